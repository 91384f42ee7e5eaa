"""The schema and the keys: as they are asked for, or as the table suggests."""
import re
from dataclasses import dataclass

from . import Fault
from .findable import is_found
from ..shown import shown

TYPES = {name.lower(): name for name in ("Simple", "SimpleNC", "CCNUMBER")}
# Words of headers, in the languages that tables mostly come in.
KNOWN = re.compile(
    r"name|surname|nachname|vorname|prenom|prénom|nom|apellidos?|nombre|cognome|naam|first|last|given"
    r"|family|e-?mail|mail|phone|tel|telefon|mobile|handy|iban|card|karte|kreditkarte|carte|account"
    r"|konto|compte|zip|post(al)?code|plz|city|town|ort|stadt|ville|ciudad|street|strasse|straße"
    r"|address|adresse|country|land|pays|birth|dob|geburtsdatum|number|no|nr|id|customer|kunde|client"
    r"|title|company|firma|bank|pan|ssn", re.I)
PRIVATE = re.compile(r"surname|last|family|nachname|apellido|cognome|mail|iban|card|karte|carte|pan"
                     r"|account|konto|phone|tel|mobile|ssn", re.I)
NUMBERED = re.compile(r"iban|card|karte|carte|\bpan\b|account|konto|phone|\btel|mobile|handy|ssn",
                      re.I)
SHARED = re.compile(r"first|given|vorname|pr[eé]nom|nombre|city|town|ort|stadt|ville|ciudad|street"
                    r"|stra(ss|ß)e|country|land|pays|title|zip|post|plz|birth|dob|geburt|date", re.I)
DATE = re.compile(r"\d{1,4}([-./])\d{1,2}\1\d{1,4}").fullmatch
NUMBER = re.compile(r"[-+()/. \dA-Z]*").fullmatch
MOST = 0.8  # of a column's values say what it holds
SOME = 0.3  # when its name says so, too
LEAST_OF_NUMBER = 5  # characters: shorter ones stand in every text


@dataclass
class Column:
    name: str
    type: str
    is_distinct: bool = False  # few records share a value
    has_blank: bool = False


def has_header(first, others):
    """Whether the first record names the columns: it says what they are, or where others have
    numbers and addresses it has none."""
    if any(looks_like_data(cell) for cell in first) or not any(cell.strip() for cell in first):
        return False
    words = [word for cell in first for word in re.findall(r"[^\W\d_]+(?:-[^\W\d_]+)?", split(cell))]
    if any(KNOWN.fullmatch(word) for word in words):
        return True
    columns = zip(*(fields for fields in others if len(fields) == len(first)))
    return any(share(looks_like_data, values) >= MOST for values in columns)


def split(name):
    """FirstName is two words."""
    return re.sub(r"(?<=[a-z])(?=[A-Z])", " ", name)


def looks_like_data(cell):
    digits = sum(character.isdigit() for character in cell)
    return "@" in cell or (digits > 0 and 2 * digits >= len(cell.replace(" ", "")))


def share(test, values):
    known = [value.strip() for value in values if value.strip()]
    return sum(map(bool, map(test, known))) / len(known) if known else 0


def looks_like_number(value):
    """Of a card, an account, a telephone, a place: where letters stand, digits are close by."""
    digits = sum(character.isdigit() for character in value)
    return bool(digits * 4 >= len(value.replace(" ", "")) and NUMBER(value.upper())
                and not DATE(value) and is_found(value))


def propose(names, rows):
    """A column for each name, by the values in these rows."""
    columns = []
    for index, name in enumerate(names):
        values = [row[index].strip() for row in rows if len(row) == len(names)]
        known = [value for value in values if re.search(r"\w", value)]
        least = SOME if NUMBERED.search(split(name)) else MOST
        is_number = share(looks_like_number, known) >= least
        column = Column(name, "CCNUMBER" if is_number else "SimpleNC")
        column.is_distinct = is_worth_a_key(name, known, is_number)
        columns.append(column)
    return columns


def is_worth_a_key(name, known, is_number):
    if not known or is_number and sum(map(len, known)) < LEAST_OF_NUMBER * len(known):
        return False
    words = split(name)
    if PRIVATE.search(words) or SHARED.search(words):
        return bool(PRIVATE.search(words))
    return 2 * len({value.lower() for value in known}) >= len(known)


def propose_keys(columns):
    """No column with a blank. Without a good one, the first that will do."""
    able = [column.name for column in columns if not column.has_blank]
    good = [column.name for column in columns if column.is_distinct and not column.has_blank]
    return good or able[:1]


def mend_names(names, report):
    """Names that a schema can hold, all different."""
    mended = []
    for place, name in enumerate(names, 1):
        new = " ".join(re.sub(r"[;,\x00-\x1f\x7f\ufeff]", " ", name).split())
        new = new.lstrip("-/ ") or f"Column{place}"
        plain, count = new, 1
        while new.casefold() in (other.casefold() for other in mended):
            count += 1
            new = f"{plain} {count}"
        if new != name:
            report.say(f'the field "{shown(name)}" is called "{shown(new)}"')
        mended.append(new)
    return mended


def parse_schema(text):
    columns = []
    for piece in filter(str.strip, text.split(";")):
        name, comma, kind = (part.strip() for part in piece.partition(","))
        if not comma or not name or kind.lower() not in TYPES:
            raise Fault(f'--schema: "{shown(piece)}" is no name, comma and type (Simple, SimpleNC or '
                        "CCNUMBER)")
        columns.append(Column(name, TYPES[kind.lower()]))
    if len({column.name.casefold() for column in columns}) < len(columns) or not columns:
        raise Fault("--schema: no names, or one that stands twice")
    return columns


def parse_keys(text, columns):
    keys = [key.strip() for key in text.split(",") if key.strip()]
    names = [column.name for column in columns]
    for key in keys:
        if key not in names:
            raise Fault(f'--keys: no field is called "{shown(key)}"; there are ' + ", ".join(
                map(shown, names)))
    if not keys or len(set(keys)) < len(keys):
        raise Fault("--keys: no key, or one that stands twice")
    return keys
