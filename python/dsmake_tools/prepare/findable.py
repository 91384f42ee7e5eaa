"""Which values of the type CCNUMBER a scan finds where a text writes them as the table does.

The type takes blanks and hyphens out of a value. In a text, words between them are put together only
when they look like the groups of a number; docs/scanning.md has the rules. Values of the other types
are always found as they are written.
"""
import re

# Most values; the rules below would say the same.
PLAIN = re.compile(r"\+?[0-9A-Za-z]*|\+?\(?\d{1,8}\)?(?:[ /-]\d{1,8}){1,6}").fullmatch
# Characters of words; not those of scripts that have each as a word, nor raised figures. Accents and
# soft hyphens belong to what stands before them.
LETTERS = ("(?:[^\\W\u00b2\u00b3\u00b9\u00bc-\u00be\u0e00-\u0eff\u2070-\u209c\u3040-\u309f\u3400-\u9fff"
           "\U00020000-\U0003ffff][\u00ad\u0300-\u036f]*)+")
# One word, marks within it included: some stand between figures, some between letters.
WORD = rf"{LETTERS}(?:(?:(?<=\d)[.,;'’](?=\d)|(?<!\d)[.:·'’](?!\d)){LETTERS})*"
ONE_WORD = re.compile(rf"{WORD}|.[\u00ad\u0300-\u036f]*").fullmatch
# Several that become one.
JOINED = re.compile(rf"{WORD}(?:[ -]+{WORD})+")
GROUP = re.compile(r"[A-Za-z]{1,4}|(?=[A-Za-z]*\d)[A-Za-z\d]+").fullmatch
DIGIT = re.compile(r"\d").search
# What a scan reads as something else, or as a blank, unless it stands within a single word.
LOOSENED = re.compile("[\u00ad\u2060\u200b`\u00b4\u02bc\u2018\u2019\uff07\u2010-\u2015\u2212\ufe58"
                      "\ufe63\uff0d_]|(?<=\\w)[.,:;](?=\\w)").search
MOST_CHARACTERS = 64  # in groups
MOST_BETWEEN = 8  # from one group to the next
MOST_TOKENS = 16  # of a value that may have groups


def is_found(value):
    """Whether a text that holds the value as it stands has a find there."""
    if PLAIN(value):
        return True
    joined = JOINED.findall(value)
    if not all(map(are_groups, joined)):
        return False
    bare = value.replace(" ", "").replace("-", "")
    if bare[:1].isspace():  # makes an empty word, which no text has
        return False
    if ONE_WORD(bare):
        whole = value.strip(" -")
        return whole == bare or joined == [whole]
    return not LOOSENED(value) and not (joined and len(tokens(bare)) > MOST_TOKENS)


def are_groups(joined):
    groups = re.split("[ -]+", joined)
    return (all(map(GROUP, groups)) and bool(DIGIT(groups[0]) or DIGIT(groups[-1]))
            and sum(map(len, groups)) <= MOST_CHARACTERS
            and max(map(len, re.findall("[ -]+", joined))) <= MOST_BETWEEN)


def tokens(text):
    return re.findall(rf"{WORD}|[^\w\s]", text)
