"""The files of the project: what git tracks or would track, or every file where there is no git."""

import pathlib
import subprocess


class Tree:
    def __init__(self, root):
        self.root = root
        self.files = sorted(self._list())

    def _list(self):
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                cwd=self.root, capture_output=True, check=False)
        top = subprocess.run(["git", "rev-parse", "--show-toplevel"], cwd=self.root, capture_output=True, text=True,
                             check=False).stdout.strip()
        if listed.returncode == 0 and pathlib.Path(top) == self.root:
            names = {name.decode() for name in listed.stdout.split(b"\0") if name}
            return {pathlib.PurePath(name) for name in names if (self.root / name).is_file()}
        return {path.relative_to(self.root) for path in self.root.rglob("*") if path.is_file()}

    def sources(self):
        """C++ files, as paths relative to the root."""
        return [path for path in self.files if path.suffix in (".h", ".cpp")]

    def text(self, path):
        """A file's text; empty for one that is not text."""
        raw = (self.root / path).read_bytes()
        if b"\0" in raw:
            return ""
        return raw.decode("utf-8", errors="replace")
