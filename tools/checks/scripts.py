"""Shell scripts are shellcheck's to judge."""

import subprocess


def is_shell(files, path):
    first = files.text(path).split("\n", 1)[0]
    return first.startswith("#!") and first.rstrip().endswith(("bash", "sh"))


def check(files, _fix):
    names = [str(path) for path in files.files if path.suffix in ("", ".sh") and is_shell(files, path)]
    if not names:
        return
    run = subprocess.run(["shellcheck", "--format=gcc", *names], cwd=files.root, capture_output=True, text=True,
                         check=False)
    yield from run.stdout.splitlines()
