"""Checks a report as a browser would take it: checkpage.py PAGE [TEXT]...

Prints what is wrong: a script or a style that the page's policy does not name, an address outside of the
notice of the data, an attribute that runs or fetches something, elements that are not closed. Each TEXT
has to be on the page, as text.
"""

import base64
import hashlib
import html.parser
import re
import sys

VOID = {"meta", "input", "br", "rect"}
FETCHING = {"src", "srcset", "data", "action", "formaction", "poster", "background", "ping"}


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.open, self.policy, self.scripts, self.styles = [], None, [], []
        self.text, self.notice, self.ids, self.problems = [], [], set(), []

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in FETCHING or name.startswith("on") or name == "style":
                self.problems.append(f"{tag} has {name}={value!r}")
            if name == "href" and not value.startswith("#"):
                self.problems.append(f"{tag} leads to {value!r}")
            if name == "id":
                if value in self.ids:
                    self.problems.append(f"two elements are {value!r}")
                self.ids.add(value)
        given = dict(attrs)
        if given.get("http-equiv") == "Content-Security-Policy":
            self.policy = given["content"]
        if tag not in VOID:
            self.open.append((tag, given))

    def handle_startendtag(self, tag, attrs):
        self.handle_starttag(tag, attrs)
        if tag not in VOID:
            self.open.pop()

    def handle_endtag(self, tag):
        if not self.open or self.open[-1][0] != tag:
            self.problems.append(f"</{tag}> at {self.getpos()} closes {self.open[-1:]}")
        else:
            self.open.pop()

    def handle_data(self, data):
        tag, attrs = self.open[-1] if self.open else ("", {})
        if tag == "script" and attrs.get("type") != "application/json":
            self.scripts.append(data)
        elif tag == "style":
            self.styles.append(data)
        elif tag == "pre":
            self.notice.append(data)
        else:
            self.text.append(data)


def source(text):
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


def main():
    page = Page()
    with open(sys.argv[1], encoding="utf-8", newline="") as file:
        page.feed(file.read())
    page.close()
    if page.open:
        page.problems.append(f"not closed: {page.open}")
    if len(page.scripts) != 1 or len(page.styles) != 1:
        page.problems.append(f"{len(page.scripts)} scripts, {len(page.styles)} styles")
    expected = (
        f"default-src 'none'; script-src {source(''.join(page.scripts))}; "
        f"style-src {source(''.join(page.styles))}; base-uri 'none'; form-action 'none'"
    )
    if page.policy != expected:
        page.problems.append(f"the policy is {page.policy!r}, not {expected!r}")
    everything = page.text + page.scripts + page.styles
    for address in re.findall(r"[a-z]+://\S{1,40}|url\(|@import|\bfetch\(|import\(", "\n".join(everything)):
        page.problems.append(f"an address: {address!r}")
    for text in sys.argv[2:]:
        if text not in " ".join("".join(page.text).split()):
            page.problems.append(f"{text!r} is not on the page")
    print("\n".join(page.problems), end="\n" if page.problems else "")
    return 1 if page.problems else 0


sys.exit(main())
