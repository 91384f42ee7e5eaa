"""What gzip files and zip archives hold, also where their ends are missing."""
import gzip
import re
import struct
import zipfile
import zlib

CHUNK = 1 << 16
MOST_MEMBERS = 100_000  # of a list of contents: it is held in memory
MEMBER_COST = 1 << 10  # counted for each member: empty ones take time as well
LOCAL = struct.Struct("<4s5H3I2H")
FAULTS = (OSError, EOFError, zlib.error, zipfile.BadZipFile, NotImplementedError, RuntimeError,
          ValueError, struct.error)


class Locked(Exception):
    """A member that needs a password."""


def gather(work, chunks, cut_short):
    """All that the chunks give, as one; what could be had when they end with a fault."""
    whole = bytearray()
    try:
        for chunk in chunks:
            work.output.spend(len(chunk))
            whole += chunk
            if len(whole) > work.output.limit:
                work.output.too_much()
                break
    except Locked:
        work.output.fault("a zip archive needs a password")
    except FAULTS:
        work.output.fault(cut_short)
    return bytes(whole)


def extract_gzip(work, source):
    with gzip.GzipFile(fileobj=source) as file:
        chunks = iter(lambda: file.read1(CHUNK), b"")
        work.add(gather(work, chunks, "a gzip file is damaged or cut short"))


def members_of(work, source):
    """Yields a name and a function that gives the chunks of what is packed."""
    if count_in(source, b"PK\x01\x02") <= MOST_MEMBERS:
        try:
            archive = zipfile.ZipFile(source)
        except FAULTS:
            pass
        else:
            yield from listed_members(archive)
            return
    work.output.fault("a zip archive is damaged or cut short")
    yield from found_members(source)


def listed_members(archive):
    def open_member(info):
        if info.flag_bits & 1:
            raise Locked
        # Others need as much memory as the archive asks for.
        if info.compress_type not in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED, zipfile.ZIP_BZIP2):
            raise NotImplementedError
        with archive.open(info) as file:
            yield from iter(lambda: file.read1(CHUNK), b"")

    for info in archive.infolist():
        if not info.filename.endswith("/"):
            yield info.filename, lambda info=info: open_member(info)


def found_members(source):
    """Without a list of contents: by what stands in front of each member. Encrypted ones are left."""
    at = 0
    while (at := find(source, b"PK\x03\x04", at)) >= 0:
        source.seek(at)
        header = source.read(LOCAL.size)
        if len(header) < LOCAL.size:
            return
        _, _, flags, method, _, _, _, size, _, name_size, extra_size = LOCAL.unpack(header)
        name = source.read(name_size).decode("utf-8", "replace")
        begin = at + LOCAL.size + name_size + extra_size
        at = begin
        if not flags & 1 and method == zipfile.ZIP_DEFLATED:
            yield name, lambda begin=begin: inflate(source, begin)
        elif not flags & 1 and method == zipfile.ZIP_STORED:
            yield name, lambda begin=begin, size=size: stored(source, begin, size)


def inflate(source, begin):
    source.seek(begin)
    unpack = zlib.decompressobj(-zlib.MAX_WBITS)
    while not unpack.eof:
        packed = unpack.unconsumed_tail or source.read(CHUNK)
        if not packed:
            raise EOFError
        yield unpack.decompress(packed, CHUNK)


def stored(source, begin, size):
    source.seek(begin)
    while size > 0:
        chunk = source.read(min(size, CHUNK))
        if not chunk:
            raise EOFError
        size -= len(chunk)
        yield chunk


def find(source, wanted, at):
    for place in places_of(source, wanted, at):
        return place
    return -1


def count_in(source, wanted):
    return sum(1 for _ in places_of(source, wanted, 0))


def places_of(source, wanted, at):
    source.seek(at)
    kept = b""
    while chunk := source.read(CHUNK):
        block = kept + chunk
        for found in re.finditer(re.escape(wanted), block):
            yield at - len(kept) + found.start()
        at += len(chunk)
        kept = block[len(block) - len(wanted) + 1:]
