"""Looks values up in data set files and scans texts for their records.

    import dsmake

    with dsmake.DataSet("customers.ds") as customers:
        print(customers.find("Surname", "O'Brien"))
        with open("letter.txt", "rb") as letter:
            for find in customers.scan(letter, least=3):
                print(find.line, find.key, find.quote)

The shared library is the one that the environment variable DSMAKE_LIBRARY names, or that stands
under the same prefix or was built in the same checkout, or else the system's libdsmake.so.22. Calls into it release the interpreter: threads of Python look up and scan
side by side on one open data set.
"""
from ._data_set import DataSet, Error, Find, Text, version

__all__ = ["DataSet", "Error", "Find", "Text", "version"]
