"""The text of HTML, whole or broken.

Goes through once, whatever stands there: a search that failed is not made again, so that a text of
nothing but opening tags takes no more time than another of its length.
"""
import html
import re

# Text on both sides of these belongs together: <b>Sm</b>ith.
INLINE = frozenset(
    "a abbr acronym b bdi bdo big cite code del dfn em font i ins kbd label mark nobr q s samp small "
    "span strike strong sub sup tt u var wbr".split())
NAME = re.compile(r"/?([a-zA-Z][^\s/>\"']*)")
QUOTE_OR_END = re.compile("[\"'>]")
# What people see or send although it stands in a tag.
ATTRIBUTE = re.compile(r"""\b(?:alt|title|value|placeholder|content|href\s*=\s*["']?mailto)\s*[=:]"""
                       r"""\s*(?:"([^"]*)"|'([^']*)'|([^\s"'>]+))""", re.I)
LONG_NUMBER = re.compile(r"&#[xX]?[0-9a-fA-F]{9,};?")


def unescape(text):
    if "&" not in text:
        return text
    return html.unescape(LONG_NUMBER.sub("\ufffd", text))  # which int() would refuse


class HtmlText:
    """Yields the pieces of the text, in order."""

    def __init__(self, source):
        self.source = source
        self.last_quote = {quote: source.rfind(quote) for quote in "\"'"}
        self.quotes_count = True
        self.unclosed = set()

    def pieces(self):
        source, at = self.source, 0
        while (begin := source.find("<", at)) >= 0:
            yield unescape(source[at:begin].replace("-->", " "))
            name = NAME.match(source, begin + 1)
            if source.startswith("<!--", begin):  # what it hides is in the file, too
                yield "\n"
                at = begin + 4
            elif name is None and source[begin + 1:begin + 2] not in ("!", "?", "/"):
                yield "<"
                at = begin + 1
            elif (end := self.find_end(begin + 1)) < 0:
                at = begin
                break
            else:
                at = end + 1
                if name:
                    yield from self.tag(name[1].lower(), source[name.end():end])
                    at, raw = self.raw_text(name[0].lower(), at)
                    yield raw
        yield unescape(source[at:])

    def tag(self, name, rest):
        if name in ("td", "th"):
            yield "\t"
        elif name not in INLINE and ":" not in name:
            yield "\n"
        if "=" in rest:
            for values in ATTRIBUTE.findall(rest):
                yield f" {unescape(''.join(values))} "

    def find_end(self, at):
        """Where the tag ends; quotes may hold a '>'. A quote that nothing closes is none."""
        if self.quotes_count:
            place = at
            while found := QUOTE_OR_END.search(self.source, place):
                if found[0] == ">":
                    return found.start()
                if self.last_quote[found[0]] > found.start():
                    place = self.source.find(found[0], found.end()) + 1
                else:
                    place = found.end()
            self.quotes_count = False  # else the next tag would try as long
        return self.source.find(">", at)

    def raw_text(self, name, at):
        """Behind a tag: what is no HTML, and where it ends. Style is of no use to a reader."""
        if name not in ("script", "style") or name in self.unclosed:
            return at, ""
        closing = re.compile(f"</{name}", re.I).search(self.source, at)
        if closing is None:
            self.unclosed.add(name)
            return at, ""
        return closing.start(), self.source[at:closing.start()] if name == "script" else ""


def charset_of(head):
    """What a meta tag says."""
    found = re.search(rb"<meta[^>]{0,500}?charset\s*=\s*[\"']?\s*([\w.:-]{1,40})", head, re.I)
    return found[1].decode("ascii", "replace") if found else None
