#!/usr/bin/env python3
"""Makes a report of canned records and opens it in a browser: no broken picture, style sheet or link, and every text
of the records is shown as it is.

usage: open_report.py COMMAND...    the command that starts report_run

Exits with 77 when the page could not be opened for want of a browser; all else was checked then.
"""
import functools
import html.parser
import http.server
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
TEXTS = ['g++ -c "a b".cpp && echo <b>&amp;</b>', "</code><script>document.title='taken'</script>",
         "' onload='x' href=\"nowhere.html\" <img src=nowhere.png>", "toreplace \u00e9\u65e5\u672c &#60; <!-- "]
IDENTIFIERS = ["typename", "</td><td>", "toreplace"]
TAGS = set("html head meta title link body table tr td th div span a h1 h2 h3 p ul li b code".split())
SHOWN = ["zeq_Logo.png", "compass.png", "Top_Bar_Layer_Top_Rounded_part.png", "Top_Bar_Layer_Top.png",
         "ToolbarMenuIcons.png"]


class Page(html.parser.HTMLParser):
    """Links and names of a page, its tags, and the texts of its code elements."""
    def __init__(self, text):
        super().__init__()
        self.links, self.names, self.tags, self.codes, self.inside = [], set(), set(), [], False
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        self.tags.add(tag)
        self.links += [value for name, value in attributes if name in ("href", "src")]
        self.names |= {value for name, value in attributes if name == "id"}
        self.inside = tag == "code"
        if self.inside:
            self.codes.append("")

    def handle_endtag(self, tag):
        self.inside = False

    def handle_data(self, data):
        if self.inside:
            self.codes[-1] += data


def make_report(command, folder):
    commands = "".join(f"command\t{i}\t{i % 2}\t{i * 700}\tended\t{i}.log\t{text}\n" for i, text in enumerate(TEXTS, 1))
    words = "".join(f"identifier\t{word}\t{90 - i}\n" for i, word in enumerate(IDENTIFIERS))
    (folder / "batch").write_text(f"batch\t<i>file</i>\t2800\n{commands}counter\tcommands <u>ended</u> 4 in 2s\n", "utf-8")
    (folder / "scan").write_text(f"scan\t<i>folder</i>\t7\t0\t99\t1234567\t300\t20\t94\n{words}", "utf-8")
    (folder / "1.log").write_text("said something")
    (folder / "2.log").write_text("")
    environment = dict(os.environ, RkrkROOT_PATH=str(ROOT))
    subprocess.run([*command, "report", "batch", "scan"], cwd=folder, env=environment, check=True, timeout=60)
    return folder / "report"


def check_page(page, tags):
    assert page.tags <= tags, page.tags - tags
    assert page.codes[1:] == TEXTS + IDENTIFIERS, page.codes


def check_links(report, page):
    links = [(report, link) for link in page.links if not link.startswith("#")]
    assert {"logs/1/1.log", "dump/Objects.txt"} <= {link for _, link in links} and "logs/1/2.log" not in page.links
    assert {link[1:] for link in page.links if link.startswith("#")} <= page.names, page.names
    for sheet in report.glob("css/*"):
        links += [(sheet.parent, link) for link in re.findall(r'url\("(.*?)"\)', sheet.read_text())]
    for base, link in links:
        target = (base / link).resolve()
        assert target.is_file() and report.resolve() in target.parents, link


def check_picture(path):
    """A PNG file whose chunks are whole and whose rows are all there: 8 bits each of red, green, blue and alpha."""
    data, place, pixels = path.read_bytes(), 8, b""
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    while place < len(data):
        size, kind = struct.unpack_from(">I4s", data, place)
        body = data[place + 8:place + 8 + size]
        assert struct.unpack_from(">I", data, place + 8 + size)[0] == zlib.crc32(kind + body), path
        if kind == b"IHDR":
            width, height = struct.unpack_from(">II", body)
        pixels += body if kind == b"IDAT" else b""
        place += size + 12
    assert len(zlib.decompress(pixels)) == height * (1 + 4 * width), path


def open_in_browser(browser, report):
    """The page as the browser understood it. What it asked for and got is the server's to tell."""
    answers = {}

    class Handler(http.server.SimpleHTTPRequestHandler):
        def log_request(self, code="-", size="-"):
            answers[self.path] = int(code)

        def log_message(self, *arguments):
            pass

    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=report)) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        with tempfile.TemporaryDirectory() as profile:
            opened = subprocess.run(
                [browser, "--headless", "--no-sandbox", "--disable-gpu", "--no-proxy-server", "--enable-logging=stderr",
                 f"--user-data-dir={profile}", "--dump-dom", f"http://127.0.0.1:{server.server_port}/index.html"],
                capture_output=True, check=True, timeout=50)
        server.shutdown()
    answers.pop("/favicon.ico", None)  # asked for of every server
    assert set(answers.values()) == {200}, answers
    assert {f"/pictures/{name}" for name in SHOWN} <= answers.keys(), answers
    assert b"CONSOLE" not in opened.stderr, opened.stderr
    return opened.stdout.decode()


def main():
    if len(sys.argv) < 2 or sys.argv[1] == "--help":
        print(__doc__.strip())
        return 0 if len(sys.argv) > 1 else 2
    with tempfile.TemporaryDirectory() as name:
        report = make_report(sys.argv[1:], pathlib.Path(name))
        page = Page((report / "index.html").read_text("utf-8"))
        check_page(page, TAGS)
        check_links(report, page)
        for picture in report.glob("pictures/*"):
            check_picture(picture)
        browser = shutil.which("chromium")
        if browser is None:
            print("skipped: no chromium is installed to open the page")
            return 77
        check_page(Page(open_in_browser(browser, report)), TAGS | {"tbody"})
    return 0


if __name__ == "__main__":
    sys.exit(main())
