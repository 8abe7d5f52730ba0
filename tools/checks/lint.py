"""clang-tidy, on the sources whose text, or that of a header they include, changed since it last passed.

Tests are left out: their macros drown what is worth knowing, and they are judged by being run.
"""

import concurrent.futures
import hashlib
import json
import os
import re
import subprocess

PRESET = "debug"
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def check(files, _fix):
    # Only the tree that a build knows can be linted: clang-tidy needs the commands of its compiler.
    if not (files.root / "CMakePresets.json").is_file():
        return
    build = files.root / "build" / PRESET
    subprocess.run(["cmake", "--preset", PRESET], cwd=files.root, stdout=subprocess.DEVNULL, check=True)
    passed = build / "lint"
    passed.mkdir(exist_ok=True)
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    sources = sorted({command["file"] for command in commands
                      if is_ours(files.root, command["file"])})
    stale = [(source, stamp) for source in sources
             if not (stamp := passed / fingerprint(files.root, source)).exists()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for findings in pool.map(lambda job: lint(files.root, build, *job), stale):
            yield from findings


def is_ours(root, name):
    return name.startswith(f"{root}/") and not name.startswith((f"{root}/build/", f"{root}/tests/"))


def lint(root, build, source, stamp):
    run = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), source], cwd=root, capture_output=True, text=True,
                         check=False)
    findings = [line.replace(str(root) + "/", "") for line in run.stdout.splitlines()
                if re.search(r": (warning|error): ", line)]
    if run.returncode == 0 and not findings:
        stamp.touch()
    elif not findings:
        findings = [f"{source}: clang-tidy failed: {run.stderr.strip()}"]
    return findings


def fingerprint(root, source):
    """Names a source together with all that it includes from the tree, and the rules."""
    digest = hashlib.sha256((root / ".clang-tidy").read_bytes())
    pending, seen = [source], set()
    while pending:
        name = pending.pop()
        path = root / name
        if name in seen or not path.is_file():
            continue
        seen.add(name)
        text = path.read_bytes()
        digest.update(str(name).encode() + b"\0" + text)
        pending += INCLUDE.findall(text.decode("utf-8", errors="replace"))
    return digest.hexdigest()
