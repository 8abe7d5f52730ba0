"""The layout of C++ files is clang-format's."""

import subprocess


def check(files, fix):
    names = [str(path) for path in files.sources()]
    if not names:
        return
    mode = ["-i"] if fix else ["--dry-run", "-Werror"]
    run = subprocess.run(["clang-format", *mode, *names], cwd=files.root, capture_output=True, text=True, check=False)
    if run.returncode == 0:
        return
    seen = set()
    for line in run.stderr.splitlines():
        if "error:" in line or "warning:" in line:
            place = line.split(": ")[0].rsplit(":", 1)[0]
            if place not in seen:
                seen.add(place)
                yield f"{place}: not laid out as clang-format does it (tools/check --fix format)"
    if not seen:
        yield run.stderr.strip()
