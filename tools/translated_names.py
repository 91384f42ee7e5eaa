"""translated_names.py FILE.mo...: the names in compiled translation files, one a line: the
translation, TAB, the English name, TAB, a card-like number."""
import re
import struct
import sys


def texts(data, count, table):
    for index in range(count):
        size, start = struct.unpack_from("<II", data, table + 8 * index)
        yield data[start : start + size].decode("utf-8")


def translations(path):
    with open(path, "rb") as file:
        data = file.read()
    magic, _, count, originals, translated = struct.unpack_from("<5I", data)
    if magic != 0x950412DE:
        sys.exit(f"{path}: not a little-endian .mo file")
    return zip(texts(data, count, originals), texts(data, count, translated))


def main():
    number = 0
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    for path in sys.argv[1:]:
        for original, translated in translations(path):
            columns = [re.sub(r"\s+", " ", text) for text in (translated, original)]
            if all(columns):  # the empty name is the file's own description
                number += 1
                digits = f"{4000000000000000 + number * 7919}"
                columns.append("-".join(re.findall("....", digits)))
                print("\t".join(columns))


main()
