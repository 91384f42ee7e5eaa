"""The text of the XML parts of documents.

A document type is refused: no document of these kinds has one, and its entities could grow without
bound.
"""
from xml.parsers import expat

OFFICE = ("wordprocessingml", "presentationml", "drawingml", "spreadsheetml")
OFFICE_TEXT = frozenset(["t", "delText", "instrText"])
OFFICE_BREAKS = {"p": "\n", "br": "\n", "cr": "\n", "tr": "\n", "si": "\n", "comment": "\n",
                 "tab": "\t", "ptab": "\t", "tc": "\t", "noBreakHyphen": "-"}
# In other documents, text on both sides of these belongs together.
INLINE = frozenset(["span", "a", "meta", "bookmark", "bookmark-start", "bookmark-end",
                    "reference-mark", "reference-mark-start", "reference-mark-end",
                    "soft-page-break", "change", "change-start", "change-end"])
BLANKS = {"s": " ", "tab": "\t"}


class Refused(Exception):
    pass


def local(name):
    return name.rpartition(" ")[2]


def read_xml(data, reader):
    """Calls reader.start(name, attributes), .end(name) and .text(characters); false when the XML is
    damaged. A name is its namespace, a blank and the local name."""
    def refuse(*_):
        raise Refused

    parser = expat.ParserCreate(namespace_separator=" ")
    parser.buffer_text = True
    parser.StartDoctypeDeclHandler = refuse
    parser.StartElementHandler = reader.start
    parser.EndElementHandler = reader.end
    parser.CharacterDataHandler = reader.text
    try:
        parser.Parse(data, True)
    except (expat.ExpatError, Refused, ValueError, LookupError):
        return False
    return True


class TextReader:
    """Hands all text to `write`, with the breaks between its paragraphs."""

    def __init__(self, write):
        self.write = write
        self.path = []
        self.is_office = False

    def start(self, name, _attributes):
        if not self.path:
            self.is_office = any(part in name for part in OFFICE)
        self.path.append(local(name))

    def end(self, _name):
        name = self.path.pop()
        if self.is_office:
            self.write(OFFICE_BREAKS.get(name, ""))
        elif name not in INLINE:
            self.write(BLANKS.get(name, "\n"))

    def text(self, characters):
        # Numbers that say where a picture stands are text as well, for a reader of XML.
        if not self.is_office or self.path[-1] in OFFICE_TEXT:
            self.write(characters)
