#!/usr/bin/env python3
"""make_records.py PROFILE COUNT FILE: lines of first name, surname and card number.

The same arguments always give the same bytes. Surnames are distributed like real ones: a few are
very common, most are rare; about 300,000 forms stand in a million records.

  ascii   ASCII only
  mixed   one record in five has names with accents or of another script
  unique  as ascii, but no surname occurs twice
  dupkey  as ascii, but there are 20 surnames only
  same    all records are equal
"""
import random
import sys

FORMS = 420_000
COMMON = """smith jones garcia nguyen brown miller davis wilson taylor clark walker hall young king
wright hill scott green baker adams carter lopez martin lee perez white harris lewis allen torres
rivera cook morgan bell murphy bailey cooper reed kelly howard ward cox gray james watson brooks
price bennett wood barnes ross henderson coleman jenkins perry powell long hughes patel butler
o'brien o'connor d'angelo smith-jones taylor-reed st.james van-dyke mcdonald macleod fitzgerald
singh kumar sharma chen wang li zhang kim park choi tanaka suzuki sato yilmaz kaya silva santos
rossi russo ferrari schmidt schneider fischer weber meyer wagner becker hoffmann schulz novak
kowalski horvat popescu ivanov petrov andersson johansson hansen olsen nielsen virtanen""".split()
FIRST = """anna maria john peter susan paul linda mark laura david julia james emma thomas sara
michael helen robert alice daniel nora george lucy henry clara jack rose oliver grace leo ivy max
ella sam ruby adam zoe ian eva carl ida hugo mia omar lena ivan nina jose ana luis carmen ali
fatima ahmed layla wei mei jun yuki ravi priya""".split()
ONSETS = "b br c ch d dr f g gr h j k kr l m n p pr r s sh st t tr v w z".split()
VOWELS = "a e i o u ai ea ou".split()
CODAS = ["", "", "n", "r", "l", "s", "rd", "ck", "tt", "nd"]
ENDINGS = "son ton man ley field er ski ez ini sen berg wood ".split(" ")
# Consonants, vowels and endings by script. The first list's accents are half composed, half not.
SCRIPTS = [
    (["b", "c", "d", "l", "m", "n", "r", "\u0161", "\u00e7", "z\u030c"],
     ["\u00e9", "\u00f6", "\u00e0", "e\u0301", "u\u0308", "\u00ef"], ["", "s", "n"]),
    (list("\u0431\u0432\u0433\u0434\u043a\u043b\u043c\u043d\u0440\u0441"),
     list("\u0430\u0435\u0438\u043e\u0443"), ["\u0432", "\u043d\u043a\u043e", "\u0441\u043a\u0438\u0439"]),
    (list("\u03b2\u03b3\u03b4\u03ba\u03bb\u03bc\u03bd\u03c0\u03c1\u03c4"),
     list("\u03b1\u03b5\u03b7\u03b9\u03bf\u03ac"), ["\u03c2", "\u03bf\u03c5"]),
    (list("\u0628\u062a\u062c\u062d\u062f\u0631\u0633\u0639\u0643\u0644\u0645\u0646"),
     ["", "\u0627", "\u064a", "\u0648"], ["", "\u064a"]),
    (list("\u738b\u674e\u5f20\u5289\u9673\u6768\u9ec3\u7530\u4e2d\u5c71\u672c"),
     ["", "\u6587", "\u660e", "\u7f8e"], [""]),
]


def surname(rng, seen):
    while True:
        syllables = rng.choices((1, 2, 3), (2, 5, 2))[0]
        name = "".join(rng.choice(ONSETS) + rng.choice(VOWELS) for _ in range(syllables))
        name = (name + rng.choice(CODAS) + rng.choice(ENDINGS)).capitalize()
        if name not in seen:
            seen.add(name)
            return name


def foreign_name(rng):
    consonants, vowels, endings = rng.choice(SCRIPTS)
    syllables = range(rng.randint(1, 3))
    name = "".join(rng.choice(consonants) + rng.choice(vowels) for _ in syllables)
    return (name + rng.choice(endings)).capitalize()


def surname_forms(rng, profile, count):
    forms = [name.title() for name in COMMON]
    if profile == "dupkey":
        return forms[:20]
    seen = set(forms)
    while len(forms) < (count if profile == "unique" else FORMS):
        forms.append(surname(rng, seen))
    return forms


def pick(rng, forms):
    """Half of the draws follow Zipf's law, the other half are spread over all forms."""
    if rng.random() < 0.5:
        return forms[int(len(forms) ** rng.random()) - 1]
    return forms[int(rng.random() * len(forms))]


def card(rng):
    digits = f"{rng.randrange(10**15, 10**16)}"
    separator = rng.choice(("", "", "", "-", " "))
    return separator.join(digits[at : at + 4] for at in range(0, 16, 4))


def records(profile, count):
    rng = random.Random(f"{profile} {count}")
    forms = surname_forms(rng, profile, count)
    first_names = [name.title() for name in FIRST]
    if profile == "unique":
        rng.shuffle(forms)
    for index in range(count):
        if profile == "same":
            yield "George", "Washington", "4111-1111-1111-1111"
            continue
        first = pick(rng, first_names)
        last = forms[index] if profile == "unique" else pick(rng, forms)
        if profile == "mixed" and rng.random() < 0.2:
            first, last = rng.choice((first, foreign_name(rng))), foreign_name(rng)
        yield first, last, card(rng)


def main():
    if len(sys.argv) != 4 or sys.argv[1] not in ("ascii", "mixed", "unique", "dupkey", "same"):
        sys.exit(__doc__)
    with open(sys.argv[3], "w", encoding="utf-8", newline="\n") as out:
        for record in records(sys.argv[1], int(sys.argv[2])):
            out.write("\t".join(record) + "\n")


main()
