"""Zip archives, and the documents that are zip archives inside."""
import re
from itertools import islice

from .archives import gather, members_of, MEMBER_COST, MOST_MEMBERS
from .kinds import kind_of, HEAD_BYTES
from .sheets import SheetReader, StringsReader
from .xml_text import read_xml, TextReader

CUT_SHORT = "a zip archive is damaged or cut short"
# They name the other parts and say how windows stood: no text.
UNREAD = re.compile(r"(^|/)(\[Content_Types\]\.xml|settings\.xml|manifest\.(xml|rdf)|mimetype|_rels/.*)$")
SHEET = re.compile(r"xl/worksheets/[^/]*\.xml$")


def extract_zip(work, source):
    members = list(islice(members_of(work, source), MOST_MEMBERS + 1))
    if len(members) > MOST_MEMBERS:
        work.output.fault(f"a zip archive has more than {MOST_MEMBERS:,} files")
    names = {name for name, _ in members}
    is_document = "[Content_Types].xml" in names or (
        "content.xml" in names and "META-INF/manifest.xml" in names)
    if is_document:
        return extract_document(work, members)
    for _, chunks in members:
        work.output.spend(MEMBER_COST)
        work.output.end_line()
        work.add(gather(work, chunks(), CUT_SHORT))


def natural(member):
    """sheet2 before sheet10."""
    return [(len(piece), piece) if piece.isdigit() else (0, piece)
            for piece in re.split(r"([0-9]+)", member[0])]


def extract_document(work, members):
    strings = StringsReader()
    for name, chunks in members:
        if name == "xl/sharedStrings.xml":
            read(work, chunks, strings)
    for name, chunks in sorted(members, key=natural):
        if UNREAD.search(name) or name == "xl/sharedStrings.xml":
            continue
        work.output.end_line()
        if SHEET.match(name):
            read(work, chunks, SheetReader(strings.strings, work.output.write_text))
        elif name.endswith(".xml"):
            read(work, chunks, TextReader(work.output.write_text))
        else:
            extract_other(work, gather(work, chunks(), CUT_SHORT))


def read(work, chunks, reader):
    work.output.spend(MEMBER_COST)
    if not read_xml(gather(work, chunks(), CUT_SHORT), reader):
        work.output.fault("the XML of a document is damaged or cut short")


def extract_other(work, data):
    """What is embedded, but not pictures and settings."""
    kind = kind_of(data[:HEAD_BYTES])
    if kind != "plain":
        work.inner(kind, data)
    elif b"\0" not in data[:HEAD_BYTES]:
        work.plain(data)
