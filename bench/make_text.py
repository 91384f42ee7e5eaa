#!/usr/bin/env python3
"""make_text.py RECORDS MEGABYTES PUT_IN TEXT: text of invented words, wrapped at 76 columns, into
which every so often one of PUT_IN records of a table is put, first name, surname and card number.

The same arguments always give the same bytes. Of the words, one in 200 is a surname of the table.
"""
import random
import sys
import textwrap

COLUMNS = 76
VOCABULARY = 50_000


def invented_word(rng):
    return "".join(rng.choice("bcdfghklmnprstvw") + rng.choice("aeiou")
                   for _ in range(rng.choice((1, 2, 2, 3, 3, 4))))


def main(table, megabytes, put_in, text):
    rng = random.Random(7)
    with open(table, encoding="utf-8") as lines:
        records = [line.rstrip("\n").split("\t") for line in lines]
    chosen = rng.sample(records, put_in)
    surnames = [rng.choice(records)[1] for _ in range(5000)]
    words = [invented_word(rng) for _ in range(VOCABULARY)]
    # Few words make up most of a text, as in any language.
    weights = [1 / (rank + 1) for rank in range(VOCABULARY)]
    size = megabytes * 1_000_000 // put_in
    with open(text, "w", encoding="utf-8") as out:
        for first, surname, card in chosen:
            paragraph = rng.choices(words, weights, k=size // 6)
            for place in range(0, len(paragraph), 200):
                paragraph[place] = rng.choice(surnames)
            grouped = " ".join(card[i:i + 4] for i in range(0, len(card), 4))
            paragraph[len(paragraph) // 2] = f"{first} {surname}, card {grouped},"
            out.write(textwrap.fill(" ".join(paragraph), COLUMNS, break_on_hyphens=False) + "\n\n")


main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), sys.argv[4])
