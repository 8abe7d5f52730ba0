"""Arrows point down only, and the operating system is known in platform/<backend>/ alone."""

import re

BACKENDS = ("win32", "linux")

# A room and what it may include besides itself. The first name that a path begins with is its room.
ARROWS = {
    **{f"platform/{backend}": ("platform", "foundations/text") for backend in BACKENDS},
    "platform": (),
    "foundations/text": ("platform",),
    "foundations/thread": ("platform",),
    "foundations/fatal": ("platform",),
    "foundations/heap": ("foundations/fatal", "foundations/text", "foundations/thread", "platform"),
    "foundations/file": ("foundations/heap", "foundations/thread", "foundations/text", "platform"),
    "foundations/settings": ("foundations/fatal", "foundations/file", "foundations/heap", "foundations/text",
                             "platform"),
    "foundations/crash": ("foundations/fatal", "foundations/heap", "foundations/text", "platform"),
    "gnss": ("foundations", "platform/clock.h"),
    "link": ("gnss", "foundations", "platform"),
    "toolkit": ("foundations", "platform"),
    "resources": ("toolkit", "platform"),
    "forms": ("resources", "toolkit", "link", "gnss", "foundations", "platform"),
    "tools": ("resources", "toolkit", "link", "gnss", "foundations", "platform"),
    "tests/fakes": ("foundations/text", "platform"),
    # What only one system shows is tested from inside: these are part of their backend.
    **{f"tests/platform/{backend}": (f"platform/{backend}", "platform", "foundations", "tests")
       for backend in BACKENDS},
    "tests": ("tests/fakes", "tools", "forms", "resources", "toolkit", "link", "gnss", "foundations", "platform"),
    # What looks at a program from outside asks the system alone.
    **{f"bench/{backend}": () for backend in BACKENDS},
    "bench": ("tests", "forms", "toolkit", "link", "gnss", "foundations", "platform"),
    "fuzz": ("tests/fakes", "toolkit", "link", "gnss", "foundations", "platform"),
}

# What a well-kept library gives to rooms that measure and test.
LIBRARIES = {
    "tests": ("gtest/", "gmock/"),
    "tools": ("png.h",),
    "bench": ("benchmark/",),
}

STANDARD_HEADERS = frozenset("""
algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits clocale
cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib
cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream functional future
initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new
numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex source_location
span sstream stack stdexcept stop_token streambuf string string_view strstream syncstream system_error thread tuple
type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
""".split())

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif|elifdef|elifndef)\b(.*)")
PLATFORM_MACRO = re.compile(
    r"\b(?:_?WIN(?:32|64)|_WIN(?:32|64)|__?WINDOWS__?|__CYGWIN__|__MINGW\w*|_MSC_VER|__?linux(?:__)?|__gnu_linux__|"
    r"__unix(?:__)?|__APPLE__|__MACH__|__ANDROID__|__\w*BSD__|__has_include)\b")


def check(files, _fix):
    for path in files.sources():
        name = str(path)
        room = room_of(name)
        if room is None:
            yield f"{name}: stands in no room that tools/checks/layers.py knows"
            continue
        for number, line in enumerate(files.text(path).splitlines(), 1):
            for finding in check_line(files, name, room, line):
                yield f"{name}:{number}: {finding}"


def check_line(files, name, room, line):
    if is_backend(room):
        knows_system = True
    else:
        knows_system = False
        condition = CONDITION.match(line)
        if condition and PLATFORM_MACRO.search(condition.group(1)):
            yield "tests the platform; only platform/<backend>/ may"
    include = INCLUDE.match(line)
    if not include:
        return
    mark, target = include.groups()
    if mark == "<":
        if not knows_system and not is_known_library(room, target):
            yield f"includes the system header <{target}>; only platform/<backend>/ may"
    elif not (files.root / target).is_file():
        yield f'includes "{target}", which is no path from the root of the tree'
    elif not may_include(room, target):
        yield f'includes "{target}": {room} may not know {room_of(target)}'


def is_backend(room):
    return room in {f"{prefix}platform/{backend}" for backend in BACKENDS for prefix in ("", "tests/")} | {
        f"bench/{backend}" for backend in BACKENDS}


def is_known_library(room, target):
    if target in STANDARD_HEADERS:
        return True
    return any(room.split("/")[0] == user and target.startswith(prefixes) for user, prefixes in LIBRARIES.items())


def room_of(name):
    for room in ARROWS:
        if name.startswith(room + "/"):
            return room
    return None


def may_include(room, target):
    target_room = room_of(target)
    if target_room == room:
        return True
    for allowed in ARROWS[room]:
        if target == allowed or (target_room is not None and (target_room + "/").startswith(allowed + "/")):
            # The headers of the seam are for all; a backend's own are not.
            return not is_backend(target_room) or target_room == allowed
    return False
