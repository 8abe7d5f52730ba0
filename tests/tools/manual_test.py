"""The manual: its pages are sound and lead to each other, and they tell of every text and colour of the program."""

import ast
import html.parser
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest
from urllib.parse import urlsplit

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "resources" / "help"
VOID = {"meta", "link", "img", "br", "param"}
PICTURES_MOST = 600_000  # bytes, all together

# What stands in quotes in the sources and is not for the screen, and why.
UNSEEN = {
    ".chm": "the end of a file's name",
    "Skyreckoning.chm": "the name of the manual's file",
    "Software\\Vintermark\\Skyreckoning": "where the settings are; told as a name of the system",
    "https://skyreckoning.example": "an address, told as the button that opens it",
    "hello@skyreckoning.example": "an address, told as the button that opens it",
    "mailto:": "a part of an address",
    "Server port": "the name of a setting",
    "Server enabled": "the same",
    "TCP address": "the same",
    "X": "measures how high a line is",
    "uiMessage": "a section of a file of other labels, which the program does not have",
    "Abort": "a label of boxes that ask; the program's tell",
    "Cancel": "the same",
    "Ignore": "the same",
    "No": "the same",
    "Retry": "the same",
    "Yes": "the same",
    "*BERGINQS*": "a letter for each constellation; has a test of its own",
}


class Page(html.parser.HTMLParser):
    """What is in a page: links, pictures, anchors, what is bold, and what is wrong with its tags."""

    def __init__(self, path):
        super().__init__()
        self.name = path.name
        self.source = path.read_text(encoding="utf-8")
        self.open, self.faults = [], []
        self.links, self.pictures, self.anchors = [], [], []
        self.bold, self.texts, self.rows = [], {}, []
        self.feed(self.source)
        self.close()
        self.faults += [f"<{tag}> is never closed" for tag in self.open]

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        self.links += [values[name] for name in ("href", "src") if name in values]
        if tag == "img":
            self.pictures.append(values)
        if "id" in values:
            self.anchors.append(values["id"])
        if tag == "b":
            self.bold.append("")
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.rows[-1].append("")
        self.texts.setdefault(tag, []).append("")
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if self.open and self.open[-1] == tag:
            self.open.pop()
        else:
            self.faults.append(f"</{tag}> closes {self.open[-1:]} in line {self.getpos()[0]}")

    def handle_data(self, data):
        for tag in set(self.open):
            self.texts[tag][-1] += data
        if "b" in self.open:
            self.bold[-1] += data
        if "td" in self.open or "th" in self.open:
            self.rows[-1][-1] += data


def words(text):
    return " ".join(text.split())


PAGES = {path.name: Page(path) for path in sorted(FOLDER.glob("*.html"))}
STYLE = (FOLDER / "style.css").read_text(encoding="utf-8")


def listed(name):
    """The pages and anchors of a contents or index file, in its order."""
    text = (FOLDER / name).read_text(encoding="utf-8")
    return re.findall(r'name="Local" value="([^"]*)"', text)


def chapters():
    return [place for place in listed("skyreckoning.hhc") if "#" not in place]


def source(path):
    return (ROOT / path).read_text(encoding="utf-8")


def literals(path):
    """The texts in quotes of a source; neighbours are one."""
    code = re.sub(r"^\s*#include.*$|(?<!:)//.*$", "", source(path), flags=re.M)
    one = r'"(?:[^"\\\n]|\\.)*"'
    for run in re.findall(rf"{one}(?:\s+{one})*", code):
        yield "".join(ast.literal_eval(piece) for piece in re.findall(one, run))


def text_sources():
    forms = [path.relative_to(ROOT) for path in (ROOT / "forms").rglob("*") if path.suffix in (".cpp", ".h")]
    return sorted(forms) + [pathlib.Path("gnss/gnss.cpp"), pathlib.Path("gnss/gnssTSIPText.cpp")]


def program_texts():
    """Each text that the program may show, with its source."""
    for path in text_sources():
        for text in literals(path):
            if re.search(r"[^\W\d_]|[%°?]", text) and text not in UNSEEN:
                yield words(text), path
    signals = pathlib.Path("gnss/ubxSignals.h")
    for name in re.findall(r'{ubxSignal::\w+, "([^"]+)"', source(signals)):
        yield name, signals


def code_colours():
    """The colours of the pages and the theme by their names, as "#RRGGBB"."""
    colours = {}
    for path in ("forms/pageText.h", "toolkit/colour.h"):
        for name, value in re.findall(r"constexpr colour (\w+) = 0x([0-9A-F]{6});", source(path)):
            colours[name] = f"#{value[4:6]}{value[2:4]}{value[0:2]}"
    return colours


class Pages(unittest.TestCase):
    def test_tags_are_balanced_and_ids_are_unique(self):
        self.assertGreater(len(PAGES), 10)
        for page in PAGES.values():
            with self.subTest(page=page.name):
                self.assertEqual(page.faults, [])
                self.assertEqual(len(page.anchors), len(set(page.anchors)))
                self.assertIn("charset=utf-8", page.source)
                self.assertEqual([len(page.texts[tag]) for tag in ("title", "h1")], [1, 1])
                self.assertIn("Skyreckoning", page.texts["title"][0])

    def test_each_link_leads_to_a_page_a_place_in_it_or_a_file(self):
        places = [(page.name, link) for page in PAGES.values() for link in page.links]
        places += [(name, link) for name in ("skyreckoning.hhc", "skyreckoning.hhk") for link in listed(name)]
        self.assertGreater(len(places), 200)
        for name, link in places:
            with self.subTest(page=name, link=link):
                target = urlsplit(link)
                self.assertEqual((target.scheme, target.netloc), ("", ""))
                there = target.path or name
                self.assertTrue((FOLDER / there).is_file())
                if target.fragment:
                    self.assertIn(target.fragment, PAGES[there].anchors)

    def test_nothing_is_fetched_and_nothing_runs(self):
        for page in PAGES.values():
            with self.subTest(page=page.name):
                self.assertFalse({"script", "iframe", "object", "svg", "form", "style"} & set(page.texts))
                self.assertIsNone(re.search(r"\son\w+=|javascript:|\sstyle=", page.source))
        self.assertIsNone(re.search(r"@import|url\(|flex|grid", STYLE))

    def test_each_page_leads_on_and_back(self):
        order = chapters()
        self.assertEqual(order[0], "index.html")
        for at, name in enumerate(order):
            wanted = ["index.html"] + order[max(at - 1, 0):at] + order[at + 1:at + 2]
            bars = re.findall(r'<div class="nav[^"]*">(.*?)</div>', PAGES[name].source, re.S)
            with self.subTest(page=name):
                self.assertEqual([re.findall(r'href="([^"]+)"', bar) for bar in bars], [wanted, wanted])

    def test_project_and_contents_have_every_page(self):
        project = (FOLDER / "skyreckoning.hhp").read_text(encoding="utf-8")
        files = project.partition("[FILES]\n")[2].split()
        there = {path.name for path in FOLDER.iterdir() if path.suffix in (".html", ".css", ".png")}
        self.assertEqual(sorted(files), sorted(there))
        self.assertEqual(sorted(chapters()), sorted(PAGES))
        self.assertTrue(set(PAGES) - {"index.html"} <= set(PAGES["index.html"].links))
        self.assertIn("Compiled file=Skyreckoning.chm\n", project)
        self.assertIn("Default topic=index.html\n", project)

    def test_pictures_are_described_small_and_as_large_as_the_page_says(self):
        used = set()
        for page in PAGES.values():
            for picture in page.pictures:
                with self.subTest(page=page.name, picture=picture["src"]):
                    size = struct.unpack(">II", (FOLDER / picture["src"]).read_bytes()[16:24])
                    self.assertEqual((int(picture["width"]), int(picture["height"])), size)
                    self.assertGreater(len(picture["alt"]), 10)
                    used.add(picture["src"])
        stored = list(FOLDER.glob("*.png"))
        self.assertEqual({path.name for path in stored}, used)
        self.assertLess(sum(path.stat().st_size for path in stored), PICTURES_MOST)

    @unittest.skipUnless(shutil.which("chmcmd") and shutil.which("chmls"), "needs the compiler of help files")
    def test_it_compiles_to_one_file(self):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(FOLDER, folder, dirs_exist_ok=True)
            subprocess.run(["chmcmd", "skyreckoning.hhp"], cwd=folder, check=True, capture_output=True)
            listing = subprocess.run(["chmls", "list", "Skyreckoning.chm"], cwd=folder, check=True,
                                     capture_output=True, text=True).stdout
        for name in PAGES:
            self.assertRegex(listing, rf"\s/{re.escape(name)}\s")


class Program(unittest.TestCase):
    def test_every_text_of_the_program_is_told_in_bold(self):
        bold = "\n".join(words(text) for page in PAGES.values() for text in page.bold)
        texts = set(program_texts())
        self.assertGreater(len(texts), 150)
        for text, path in sorted(texts):
            with self.subTest(text=text, source=str(path)):
                self.assertRegex(bold, rf"(?<!\w){re.escape(text)}(?!\w)" if text[-1].isalnum() else re.escape(text))

    def test_what_is_excused_is_in_the_sources(self):
        known = {text for path in text_sources() for text in literals(path)}
        self.assertEqual(set(UNSEEN) - known, set())

    def test_settings_have_the_names_that_are_stored(self):
        code = {words(text) for text in PAGES["about.html"].texts["code"]}
        header = source("forms/gnssComm_UI.h")
        names = re.findall(r'settingsItem\w+ \w+{&Settings, "([^"]+)"', header)
        frame = source("toolkit/ctrlWindowPlacement.cpp")
        names += re.findall(r'placementKey \w+{"([^"]+)"', frame)
        self.assertEqual(len(names), 10)
        self.assertEqual(set(names) - code, set())
        self.assertIn("HKEY_CURRENT_USER\\Software\\Vintermark\\Skyreckoning", code)

    def test_line_settings_are_those_that_are_tried_in_their_order(self):
        code = source("link/gnssCommDetect.cpp")
        table = re.search(r"LineRows\[\] = {(.*?)};", code, re.S).group(1)
        tried = [[rate, bits, "odd" if parity == "ParityOdd" else "none", str(int(stop) + 1)]
                 for rate, bits, parity, stop in re.findall(r"{(\d+), (\d), (\w+), (\d)}", table)]
        told = [row[:4] for row in PAGES["finding.html"].rows if len(row) == 5 and row[0].isdigit()]
        self.assertEqual(len(tried), 6)
        self.assertEqual(told, tried)

    def test_letters_stand_for_their_constellations(self):
        kinds = re.search(r"enum class Source : uint8_t {(.*?)};", source("gnss/gnss.h"), re.S).group(1)
        names = re.findall(r"^\s*(\w+),", kinds, re.M)
        letters = re.search(r'SourceLetters = "([^"]+)"', source("gnss/gnss.cpp")).group(1)
        told = {row[0]: row[1] for row in PAGES["pages.html"].rows if len(row) == 3 and len(row[0]) == 1}
        self.assertEqual(set(told), set(letters))
        for letter, name in zip(letters, names, strict=True):
            if letter != "*":
                self.assertTrue(told[letter].startswith(name), (letter, name))


class Colours(unittest.TestCase):
    NAMES = {"white": "pageWhite", "cyan": "pageCyan", "green": "pageGreen", "yellow": "pageYellow",
             "amber": "LabelText"}

    def test_swatches_and_numbers_are_the_program_s(self):
        code = code_colours()
        found = [pair for page in PAGES.values()
                 for pair in re.findall(r'class="swatch (\w+)">.*?</span>[^<]*<code>(#\w+)</code>', page.source)]
        self.assertEqual({name for name, _ in found}, set(self.NAMES))
        for name, told in found:
            with self.subTest(colour=name):
                drawn = re.search(rf"^\.{name} {{[^}}]*?color: (#\w+);", STYLE, re.M).group(1)
                self.assertEqual((told, drawn), (code[self.NAMES[name]],) * 2)

    def test_states_of_satellites_have_their_colour_and_type(self):
        kinds = {"fontItalic": "italic", "fontBold": "bold", "0": "plain"}
        cells = re.findall(r"(!isTracked|IsUsed|else(?! if)) ?[^;{]*{\s*cell\.Style = (\w+);\s*cell\.Shade = (\w+);",
                           source("forms/gnssUISats.cpp"))
        rows = {"!isTracked": "satellite-untracked", "IsUsed": "satellite-used", "else": "satellite-heard"}
        self.assertEqual({state for state, _, _ in cells}, set(rows))
        for state, style, shade in cells:
            row = re.search(rf'<tr id="{rows[state]}">.*?</tr>', PAGES["pages.html"].source, re.S).group(0)
            with self.subTest(state=state):
                self.assertEqual(self.NAMES[re.search(r'swatch (\w+)"', row).group(1)], shade)
                self.assertIn(f"<td>{kinds[style]}</td>", row)


if __name__ == "__main__":
    results.main()
