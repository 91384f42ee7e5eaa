"""Tables of spreadsheets: a line for each row, so that a person's fields stand side by side."""
from .xml_text import local


class StringsReader:
    """The texts that cells name by number."""

    def __init__(self):
        self.strings = []
        self.pieces = None
        self.path = []

    def start(self, name, _attributes):
        self.path.append(local(name))
        if self.path[-1] == "si":
            self.pieces = []

    def end(self, _name):
        if self.path.pop() == "si":
            self.strings.append("".join(self.pieces))

    def text(self, characters):
        # Not the readings that stand above a text.
        if self.path[-1] == "t" and "rPh" not in self.path and self.pieces is not None:
            self.pieces.append(characters)


class SheetReader:
    """Hands a sheet's rows to `write`."""

    def __init__(self, strings, write):
        self.strings = strings
        self.write = write
        self.name = ""
        self.type = ""
        self.value = []

    def start(self, name, attributes):
        self.name = local(name)
        if self.name == "c":
            self.type = attributes.get("t", "n")
            self.value = []

    def end(self, name):
        name = local(name)
        if name == "c":
            self.write(self.cell("".join(self.value)) + "\t")
        elif name == "row":
            self.write("\n")
        elif name in ("oddHeader", "oddFooter"):
            self.write("".join(self.value) + "\n")
        self.name = ""

    def text(self, characters):
        if self.name in ("v", "t", "oddHeader", "oddFooter"):
            self.value.append(characters)

    def cell(self, value):
        if self.type == "s":
            is_known = value.isascii() and value.isdigit() and len(value) < 10
            index = int(value) if is_known else len(self.strings)
            return self.strings[index] if index < len(self.strings) else ""
        return whole_number(value) if self.type == "n" else value


def whole_number(value):
    """Card and account numbers may be written as 4.11111111111111E+15."""
    if "E" not in value.upper():
        return value
    try:
        number = float(value)
    except ValueError:
        return value
    return str(int(number)) if abs(number) < 1e21 and number == int(number) else value
