"""Holds the pages of the user's guide against each other, against what they show and against the program's resources.

    help-pages.py check ROOT        says what is wrong in the tree, a line each; fails if anything is
    help-pages.py try ROOT          breaks copies of the tree in every way that the check is there for: each must be found
    help-pages.py compiled ROOT BIN whether the compiled guides in the folder of the Windows programs have all pages
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
from html.parser import HTMLParser

LANGUAGES = {"en": "LANGUAGE 0x09, 0x01", "ja": "LANGUAGE 0x11, 0x01"}
LARGEST_PICTURE = 60 * 1024
# What both a text browser of Qt and an old help viewer show alike.
TAGS = set("html head meta title link body h1 h2 h3 p b i a ul ol li table tr th td img pre code hr".split())
VOID_TAGS = {"meta", "link", "img", "hr"}
# A translation has the same of these in the same order.
SHAPE_TAGS = set("h1 h2 h3 p ul ol li table tr th td img pre hr".split())
# Of text on its background, for eyes that are not the best.
LEAST_CONTRAST = 4.5
# The text and its background where the style names none: a light desktop's and a dark one's.
PALETTES = {"light": ("#000000", "#ffffff"), "dark": ("#ffffff", "#232323")}
# What is shown elsewhere than in a box or on the message line.
OTHER_STRINGS = re.compile(r"IDS_(TITLE|ABOUT_TITLE|VERSION|NOTICE|MODEL_\w+|HELP_\w+|RANGES_\w+)$")


def one_line(text):
    return " ".join(text.split())


class Page(HTMLParser):
    """A page taken apart: its faults, links, pictures, and the texts of its elements."""

    def __init__(self, path):
        super().__init__(convert_charrefs=True)
        self.faults, self.links, self.pictures, self.styles = [], [], [], []
        self.anchors, self.texts, self.shape = set(), [], []
        self.charset = False
        self.open = []
        try:
            self.feed(path.read_text(encoding="utf-8"))
        except UnicodeDecodeError:
            self.faults.append("is not UTF-8")
        self.close()
        if self.open:
            self.faults.append(f"leaves <{self.open[-1][0]}> open")

    def handle_starttag(self, tag, attributes):
        given = dict(attributes)
        if tag not in TAGS:
            self.faults.append(f"has <{tag}>, which not every viewer shows")
        if any(name.startswith("on") for name in given):
            self.faults.append("has a script")
        if tag in SHAPE_TAGS:
            self.shape.append(f"{tag} {given['src']}" if tag == "img" and given.get("src") else tag)
        if tag == "a" and "href" in given:
            self.links.append(given["href"] or "")
            if any(outer in ("th", "pre") for outer, _ in self.open):
                self.faults.append("has a link, whose colour is the desktop's, on a background of the style's")
            self.shape.append(f"a {given['href']}")
        if tag == "a" and "name" in given:
            self.anchors.add(given["name"])
        if "id" in given:
            self.anchors.add(given["id"])
        if tag == "img":
            self.pictures.append(given.get("src") or "")
            if not given.get("alt"):
                self.faults.append(f"says nothing in place of the picture {given.get('src')}")
        if tag == "link":
            self.styles.append(given.get("href") or "")
        if tag == "meta" and given.get("content", "").lower() == "text/html; charset=utf-8":
            self.charset = True
        if tag not in VOID_TAGS:
            self.open.append((tag, []))

    def handle_endtag(self, tag):
        if not self.open or self.open[-1][0] != tag:
            self.faults.append(f"closes <{tag}> where it is not open, line {self.getpos()[0]}")
            return
        tag, pieces = self.open.pop()
        text = "".join(pieces)
        self.texts.append((tag, text if tag == "pre" else one_line(text)))
        if self.open:
            self.open[-1][1].append(text)

    def handle_data(self, data):
        if self.open:
            self.open[-1][1].append(data)

    def of(self, *tags):
        return [text for tag, text in self.texts if tag in tags]


def resources(root, faults):
    """Of each language the messages by their names, and the menu commands by theirs."""
    source = (root / "resources/tesselia.rc").read_text(encoding="utf-8")
    found = {}
    for language, mark in LANGUAGES.items():
        behind = source.partition(mark + "\n")[2]
        block = re.split(r"^(?:LANGUAGE |// ---)", behind, flags=re.M)[0]
        table = re.search(r"^STRINGTABLE\nBEGIN\n(.*?)^END$", block, re.M | re.S)
        menu = re.search(r"^IDR_MENU MENU\nBEGIN\n(.*?)^END$", block, re.M | re.S)
        rows = [row for row in (table[1] if table else "").splitlines() if row.strip()]
        strings = dict(re.findall(r'^\s*(IDS_\w+)\s+"((?:[^"]|"")*)"\s*$', "\n".join(rows), re.M))
        items = [row for row in (menu[1] if menu else "").splitlines() if re.match(r"\s*(MENUITEM|POPUP) ", row)]
        items = [row for row in items if "SEPARATOR" not in row]
        texts = re.findall(r'^\s*(?:MENUITEM|POPUP) "(.*?)"', "\n".join(items), re.M)
        commands = [re.sub(r"\(&\w\)|\.\.\.$", "", text.split("\\t")[0]) for text in texts]
        if not strings or len(strings) != len(rows):
            faults.append(f"tesselia.rc: {len(rows)} rows of strings for {language}, {len(strings)} of them understood")
        if not commands or len(commands) != len(items):
            faults.append(f"tesselia.rc: {len(items)} menu items for {language}, {len(commands)} of them understood")
        messages = {name: text.replace('""', '"') for name, text in strings.items() if not OTHER_STRINGS.match(name)}
        found[language] = (messages, commands)
    (english, english_commands), (japanese, japanese_commands) = found.values()
    if set(english) != set(japanese) or len(english_commands) != len(japanese_commands):
        faults.append("tesselia.rc: the languages differ in what they have")
    if not any(name.startswith("IDS_ERROR_") for name in english):
        faults.append("tesselia.rc: no message of an error")
    return found


def check_project(folder, pages, faults, where):
    """The files for the compiler: the same pages under the same titles, and every file."""
    project = (folder / "Tesselia.hhp").read_text(encoding="utf-8")
    contents = (folder / "Tesselia.hhc").read_text(encoding="utf-8")
    listed = [line.strip() for line in project.partition("[FILES]")[2].splitlines() if line.strip()]
    there = sorted(path.name for path in folder.iterdir() if path.suffix not in (".hhp", ".hhc"))
    if sorted(listed) != there:
        faults.append(f"{where}/Tesselia.hhp: its files are not those of the folder: {sorted(set(listed) ^ set(there))}")
    entries = re.findall(r'<param name="Name" value="(.*?)">\s*<param name="Local" value="(.*?)">', contents)
    expected = {name: page.of("title")[0] for name, page in pages.items() if page.of("title")}
    if len(entries) != len(expected) or {local: name for name, local in entries} != expected:
        faults.append(f"{where}/Tesselia.hhc: its entries are not the pages with their titles")
    title = re.search(r"^Title=(.*)$", project, re.M)
    if not title or title[1] != expected.get("index.html"):
        faults.append(f"{where}/Tesselia.hhp: its title is not that of the first page")


def contrast(one, other):
    def luminance(color):
        parts = [int(color[at:at + 2], 16) / 255 for at in (1, 3, 5)]
        linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]

    dark, light = sorted((luminance(one), luminance(other)))
    return (light + 0.05) / (dark + 0.05)


def check_style(path, where, faults):
    """Every pair of text and background in which the style has a say, on a light and on a dark desktop."""
    text = path.read_text(encoding="utf-8")
    for selectors, body in re.findall(r"([^{}]+)\{([^{}]*)\}", text):
        given = dict(re.findall(r"([\w-]+)\s*:\s*([^;]+?)\s*(?:;|$)", body))
        colors = [value for name, value in given.items() if name in ("color", "background-color")]
        if "background" in given or not all(re.fullmatch("#[0-9a-f]{6}", color) for color in colors):
            faults.append(f"{where}/{path.name}: {selectors.strip()} has a colour that is not understood")
            continue
        for palette, (ink, paper) in PALETTES.items() if colors else ():
            if contrast(given.get("color", ink), given.get("background-color", paper)) < LEAST_CONTRAST:
                faults.append(f"{where}/{path.name}: {selectors.strip()} is hard to read on a {palette} desktop")


def check_language(folder, where, messages, commands, faults):
    files = {path.name for path in folder.iterdir()}
    pages = {path.name: Page(path) for path in sorted(folder.glob("*.html"))}
    used = {"index.html", "Tesselia.hhp", "Tesselia.hhc"}
    for name, page in pages.items():
        at = f"{where}/{name}"
        faults += [f"{at}: {fault}" for fault in page.faults]
        if not page.charset:
            faults.append(f"{at}: does not say that it is UTF-8")
        if len(page.of("title")) != 1 or page.of("title") != page.of("h1") or not page.of("h1")[0]:
            faults.append(f"{at}: title and first heading differ")
        for link in page.links:
            target, _, anchor = link.partition("#")
            target = target or name
            if target not in pages:
                faults.append(f"{at}: the link to {link} leads nowhere")
            elif anchor and anchor not in pages[target].anchors:
                faults.append(f"{at}: {target} has no place {anchor}")
        for target in page.pictures + page.styles:
            if target not in files:
                faults.append(f"{at}: {target} is not there")
        used.update(page.pictures, page.styles)
    # A page is of use only if the first one leads to it.
    ahead = ["index.html"]
    while ahead:
        targets = {link.partition("#")[0] for link in pages[ahead.pop()].links}
        new = (targets & pages.keys()) - used
        used |= new
        ahead += new
    faults += [f"{where}/{name}: nothing leads to it" for name in sorted(files - used)]
    for style in folder.glob("*.css"):
        check_style(style, where, faults)
    for picture in folder.glob("*.png"):
        content = picture.read_bytes()
        if not content.startswith(b"\x89PNG\r\n\x1a\n") or not content.endswith(b"IEND\xaeB`\x82"):
            faults.append(f"{where}/{picture.name}: is no whole picture")
        if len(content) >= LARGEST_PICTURE:
            faults.append(f"{where}/{picture.name}: is too large")
    told = pages["messages.html"].of("h3", "td", "b") if "messages.html" in pages else []
    for name, text in messages.items():
        if one_line(text) not in told:
            faults.append(f"{where}/messages.html: {name} is missing: {text}")
    named = [text for page in pages.values() for text in page.of("b")]
    for command in commands:
        if command not in named:
            faults.append(f"{where}: no page names the command {command}")
    check_project(folder, pages, faults, where)
    return pages


def check(root):
    faults = []
    found = resources(root, faults)
    guides = {}
    for language in LANGUAGES:
        folder = root / "help" / language
        if not (folder / "index.html").is_file():
            faults.append(f"{language}: has no first page")
            continue
        guides[language] = check_language(folder, language, *found[language], faults)
    if len(guides) < len(LANGUAGES):
        return faults
    english, japanese = guides.values()
    faults += [f"{name}: is there in one language only" for name in sorted(english.keys() ^ japanese.keys())]
    for name in sorted(english.keys() & japanese.keys()):
        # Words come in another order, and with them the links within a sentence.
        blocks = [[tag for tag in guide[name].shape if not tag.startswith("a ")] for guide in (english, japanese)]
        links = [sorted(tag for tag in guide[name].shape if tag.startswith("a ")) for guide in (english, japanese)]
        if blocks[0] != blocks[1] or links[0] != links[1]:
            faults.append(f"{name}: the languages differ in headings, rows, pictures or links")
        if english[name].of("pre") != japanese[name].of("pre"):
            faults.append(f"{name}: the languages differ in what is to be typed")
    return faults


def change(path, old, new, count=0):
    """What is one blank in `old` may be a line's end in the file."""
    text = path.read_text(encoding="utf-8")
    changed, times = re.subn(re.escape(old).replace(r"\ ", r"\s+"), lambda _: new, text, count)
    if times == 0:
        sys.exit(f"{path.name} has no {old!r} to break")
    path.write_text(changed, encoding="utf-8")


def breakages(root):
    """What is to be found: a name, what breaks the copy, and a piece of what the check must say then."""
    yield "a page gone", lambda copy: (copy / "help/ja/keys.html").unlink(), "keys.html: is there in one language only"
    yield "a link astray", lambda copy: change(copy / "help/en/edit.html", "send.html", "sent.html", 1), "leads nowhere"
    yield "a place astray", lambda copy: change(copy / "help/en/edit.html", "send.html", "send.html#x", 1), "no place x"
    yield "a picture gone", lambda copy: (copy / "help/ja/main.png").unlink(), "main.png is not there"
    yield "half a picture", lambda copy: (copy / "help/ja/main.png").write_bytes(b"\x89PNG\r\n\x1a\n"), "no whole picture"
    yield "the style gone", lambda copy: (copy / "help/en/guide.css").unlink(), "guide.css is not there"
    yield "a dim head", lambda copy: change(copy / "help/en/guide.css", "color: #000000; text", "text"), "th is hard to read"
    yield "a dim heading", lambda copy: change(copy / "help/ja/guide.css", "16pt;", "16pt; color: #1f5f99;"), "h1 is hard to read"
    yield "a pale text", lambda copy: change(copy / "help/en/guide.css", "9pt;", "9pt; color: #999999;"), "nav is hard to read"
    yield "a colour's name", lambda copy: change(copy / "help/en/guide.css", "#f2f2f2", "silver"), "colour that is not understood"
    yield ("a link in a head", lambda copy: change(
        copy / "help/en/keys.html", "<th>Key</th>", '<th><a href="edit.html">Key</a></th>'), "has a link, whose")
    yield "a page on its own", lambda copy: (copy / "help/en/x.html").write_text("<p></p>"), "x.html: nothing leads to it"
    yield "an open element", lambda copy: change(copy / "help/en/send.html", "</ul>", ""), "closes <"
    yield "a script", lambda copy: change(copy / "help/en/send.html", "<hr>", "<script></script>"), "has <script>"
    yield "a row left out", lambda copy: change(copy / "help/ja/keys.html", "<tr>", "", 1), "keys.html: the languages differ"
    yield "other bytes to type", lambda copy: change(copy / "help/ja/connect.html", "ttyUSB7", "ttyUSB8"), "to be typed"
    yield "contents", lambda copy: change(copy / "help/ja/Tesselia.hhc", "send.html", "get.html"), "its entries are not"
    yield "project", lambda copy: change(copy / "help/en/Tesselia.hhp", "main.png\n", ""), "its files are not"
    yield ("a new message", lambda copy: change(
        copy / "resources/tesselia.rc", "IDS_ERROR_BUSY ", 'IDS_ERROR_NEW "N."\n  IDS_ERROR_BUSY '), "IDS_ERROR_NEW is missing")
    yield "a new command", lambda copy: change(copy / "resources/tesselia.rc", '"Stop(&Q)"', '"Halt(&Q)"'), "command Halt"
    yield "strange resources", lambda copy: change(copy / "resources/tesselia.rc", "STRINGTABLE", "STRINGS"), "understood"
    yield "strange menus", lambda copy: change(copy / "resources/tesselia.rc", "IDR_MENU MENU", "IDR_MENU MENUEX"), "understood"
    found = resources(root, [])
    for language, (messages, commands) in found.items():
        for name, text in messages.items():
            yield (f"{name} in {language}", lambda copy, language=language, text=text: change(
                copy / f"help/{language}/messages.html", f">{text}<", f">{text[1:]}<"), f"{name} is missing")
        for command in set(commands):
            def forget(copy, language=language, command=command):
                for page in (copy / f"help/{language}").glob("*.html"):
                    text = page.read_text(encoding="utf-8")
                    words = re.escape(command).replace(r"\ ", r"\s+")
                    page.write_text(re.sub(f"<b>{words}</b>", "<b>-</b>", text), encoding="utf-8")
            yield f"{command} in {language}", forget, f"the command {command}"


def try_out(root):
    missed = []
    for count, (name, spoil, expected) in enumerate(breakages(root), 1):
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder)
            shutil.copytree(root / "help", copy / "help")
            (copy / "resources").mkdir()
            shutil.copy(root / "resources/tesselia.rc", copy / "resources")
            spoil(copy)
            if not any(expected in fault for fault in check(copy)):
                missed.append(f"The check does not see: {name}")
    if not missed:
        print(f"The check sees each of {count} faults")
    return missed


def compiled(root, programs):
    faults = []
    for language in LANGUAGES:
        guide = programs / ("Tesselia.chm" if language == "en" else f"{language}/Tesselia.chm")
        if not guide.is_file():
            faults.append(f"{guide} is not there")
            continue
        listing = subprocess.run(["chmls", "-n", "-p", "list", guide], capture_output=True, encoding="latin-1", check=True)
        inside = {line.strip() for line in listing.stdout.splitlines()}
        source = [path for path in (root / "help" / language).iterdir() if path.suffix != ".hhp"]
        faults += [f"{guide}: has no {path.name}" for path in source if f"/{path.name}" not in inside]
        for path in source:
            if path.suffix != ".hhc" and f"/{path.name}" in inside:
                with tempfile.TemporaryDirectory() as folder:
                    out = pathlib.Path(folder) / path.name
                    subprocess.run(["chmls", "extract", guide, f"/{path.name}", out], capture_output=True, check=True)
                    if not out.is_file() or out.read_bytes() != path.read_bytes():
                        faults.append(f"{guide}: its {path.name} is not that of the source")
    return faults


if __name__ == "__main__":
    steps = {"check": check, "try": try_out, "compiled": compiled}
    problems = steps[sys.argv[1]](*(pathlib.Path(argument) for argument in sys.argv[2:]))
    print("\n".join(problems), end="\n" if problems else "")
    sys.exit(1 if problems else 0)
