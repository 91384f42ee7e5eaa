"""dsprepare: what it takes a table to be, what it tells, writes and refuses.

DSMAKE_LIBRARY names the shared library. With DSMAKE and DSSCAN, those programs, what is prepared is
also built and scanned.
"""
import os
import shlex
import subprocess
import sys
import tempfile
import unittest

PYTHON = os.path.join(os.path.dirname(os.path.realpath(__file__)), "..")
PROGRAM = os.path.join(PYTHON, "dsprepare")
sys.path.insert(0, PYTHON)

from dsmake_tools.prepare.findable import is_found  # noqa: E402

HEADER = "First,Surname,Card\n"
GOOD = "Anna,Smith,4111111111111111\nEve,Jones,4222222222222222\n"


class Preparing(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def prepare(self, table, *options, name="a b.csv", status=0):
        """What was written; self.command is what was printed, self.told the messages."""
        with open(self.path(name), "wb") as file:
            file.write(table if isinstance(table, bytes) else table.encode())
        for old in set(os.listdir(self.folder)) - {name, "kept"}:
            os.unlink(self.path(old))
        done = subprocess.run([sys.executable, PROGRAM, *options, name], cwd=self.folder,
                              capture_output=True, timeout=100)
        self.told = done.stderr.decode()
        self.command = shlex.split(done.stdout.decode())
        self.assertEqual(done.returncode, status, self.told)
        written = sorted(set(os.listdir(self.folder)) - {name, "kept"})
        self.assertEqual(len(written), status == 0, written)
        self.assertEqual(bool(self.command), status == 0)
        if status != 0:
            return None
        self.assertEqual(os.stat(self.path(written[0])).st_mode & 0o777, 0o600)
        with open(self.path(written[0]), "rb") as file:
            return file.read().decode("utf-8", "surrogateescape")

    def assert_told(self, *lines):
        for line in lines:
            self.assertIn(f"a b.csv:{line}", self.told)


class Tables(Preparing):
    def test_as_people_export_them(self):
        wanted = "Anna\tSmith\tKöln\t1,5\nO'Brien\tx y\tŁ\t2,5\n"
        comma = '"Anna",Smith,Köln,"1,5"\r\nO\'Brien, "x y"  ,Ł,"2,5"\r\n'
        header = "Vorname,Name,Ort,Wert\r\n"
        semicolon = wanted.replace("\t", ";")
        for table in (header + comma, "\ufeff" + header + comma, (header + comma).encode("utf-16"),
                      (header + comma).encode("utf-16-le"), "sep=;\n" + semicolon,
                      semicolon.removesuffix("\n"), wanted, semicolon.replace(";", "|"),
                      header.replace(",", ";") + semicolon, semicolon.replace("\n", "\r")):
            self.assertEqual(self.prepare(table), wanted, table)

    def test_encodings(self):
        self.assertEqual(self.prepare("a,Bülow\nb,€’\n".encode("cp1252")), "a\tBülow\nb\t€'\n")
        self.assert_told("1: line that is no UTF-8, taken as Windows-1252",
                         " 2 lines that are no UTF-8")
        self.assertEqual(self.prepare("a,Łó\n".encode("cp1250"), "--encoding", "cp1250"), "a\tŁó\n")
        self.assertEqual(self.told.count("Windows"), 0)
        self.prepare(b"a,b\nc,\xfc\n", "--encoding", "utf-8", status=2)
        self.assertIn("a b.csv: line 2: no utf-8", self.told)
        self.prepare(b"a,b\n", "--encoding", "rot13", status=2)

    def test_quotes_and_lines(self):
        table = 'a,"1\r\n2 ""x"""\nb,"un,closed\nc,"3\n4"\n"d" e,f"g\n'
        self.assertEqual(self.prepare(table, "--drop"), 'a\t1 2 "x"\nc\t3 4\n"d" e\tf"g\n')
        self.assert_told("1: record with a TAB, CR or line end", "3: quotation mark that holds no", "6: quotation mark that holds no",
                         "3: line with another number of fields: 3, not 2",
                         "4: record with a TAB, CR or line end")

    def test_what_is_mended_is_told(self):
        table = HEADER + "\n \nA\tB\rC,O’Brien,4’1\n\\N,\ufeffS,5\n"
        self.assertEqual(self.prepare(table), "A B C\tO'Brien\t4’1\n\tS\t5\n")
        self.assert_told("2: blank line", "3: blank line", "4: record with a TAB", "5: record with \\N",
                         "4: record with ’", "5: record with a byte order mark", " 2 blank lines")
        self.assertEqual(self.told.count("’"), 3)  # not the one in the card


class Proposals(Preparing):
    def schema(self, *arguments, **more):
        self.prepare(*arguments, **more)
        return self.command[self.command.index("-s") + 1]

    def keys(self):
        return [word for before, word in zip(self.command, self.command[1:]) if before == "-k"]

    def test_schema_and_keys(self):
        rows = "".join(f"Anna,Smith{i},x{i}@y.de,41{i} 99,SW1A {i}AA,DE89 37{i} 00,198{i}-05-12,{i}\n"
                       for i in range(10))
        head = "FirstName,Surname,Mail,Phone,Postcode,IBAN,Birth,Rank\n"
        self.assertEqual(self.schema(head + rows), "FirstName,SimpleNC;Surname,SimpleNC;Mail,SimpleNC;"
                         "Phone,CCNUMBER;Postcode,CCNUMBER;IBAN,CCNUMBER;Birth,SimpleNC;Rank,CCNUMBER")
        self.assertEqual(self.keys(), ["Surname", "Mail", "Phone", "IBAN"])
        self.prepare(head + rows + ",S,,,,,,\n")
        self.assertEqual(self.keys(), ["Surname"])
        self.assertEqual(self.schema(rows, "--schema", "a,simple; b,Simple;c,Simple;d,Simple;e,Simple;"
                                     "f,Simple;g,Simple;h,CCNumber", "--keys", "b, h"),
                         "".join(f"{name},Simple;" for name in "abcdefg") + "h,CCNUMBER")
        self.assertEqual(self.keys(), ["b", "h"])

    def test_header(self):
        for table, has in ((GOOD, "no"), (HEADER + GOOD, "yes"), ("x,y\n1,2\n3,4\n", "yes"),
                           ("Anna,Smith\nEve,Jones\n", "no")):
            lines = self.prepare(table).count("\n")
            self.assertEqual(table.count("\n") - lines, has == "yes", table)
            other = {"yes": "no", "no": "yes"}[has]
            self.assertEqual(self.prepare(table, "--header", other).count("\n") - lines,
                             1 if has == "yes" else -1)

    def test_names_a_schema_cannot_hold(self):
        self.assertEqual(self.schema("Name,name,\"a;b,c\n\", -x/,\nA,B,C,D,E\n"),
                         "Name,SimpleNC;name 2,SimpleNC;a b c,SimpleNC;x/,SimpleNC;Column5,SimpleNC")
        self.assertEqual(self.told.count("is called"), 4)

    def test_options_that_cannot_be(self):
        for options in (["--schema", "a;b"], ["--schema", "a,Simple;A,Simple"], ["--keys", "First,x"],
                        ["--keys", ","], ["--delimiter", "ab"], ["--schema", "a,Number"]):
            self.prepare(HEADER + GOOD, *options, status=2)
        self.prepare("", status=2)


class Faults(Preparing):
    def test_what_makes_a_build_fail_or_lose(self):
        long = "x " * 65536
        for bad, line, keys in (("a,b\n", "4: line with another number of fields: 2, not 3: a | b", ""),
                                (",b,\u2003\n", "4: blank key: First, Card", "First,Card"),
                                (f"a,{long},3\n", "4: value of more than 65,535 words: Surname", "")):
            options = ["--keys", keys] if keys else []
            self.prepare(HEADER + GOOD + bad, *options, status=1)
            self.assert_told(line)
            self.assertEqual(self.prepare(HEADER + GOOD + bad, "--drop", *options),
                             GOOD.replace(",", "\t"))
            self.assertIn(" 1 record left out", self.told)
        self.prepare(HEADER + f"a,{long[2:]},3\n")
        self.prepare("a,\n,b\n", status=1)  # no column for a key

    def test_equal_records_as_a_build_counts(self):
        table = HEADER + "Anna,Łódź,4111 1111\nx,y,1\nANNA ,ŁÓDZ\u0301,41111-111\nanna,łódź!,41111111\n"
        self.prepare(table, status=1)
        self.assert_told("4: record equal to another: that of line 2", " 1 record equal")
        self.assertEqual(self.prepare(table, "--drop").count("\n"), 3)
        self.assertEqual(self.prepare(table, "--keys", "Card").count("\n"), 4)
        many = HEADER + "".join(f"a{i % 6000},b,{i % 6000}\n" for i in range(12000))
        self.assertEqual(self.prepare(many, "--drop").count("\n"), 6000)
        self.assertIn(" 6,000 records equal", self.told)
        self.assertLess(self.told.count("\n"), 20)

    def test_values_told_only(self):
        self.prepare(HEADER + GOOD + "**,b,-\nc,d,4111–1111\n")
        self.assert_told('4: value without a word: First (SimpleNC) "**"',
                         '4: value without a word: Card (CCNUMBER) "-"',
                         '5: value that a scan does not find where a text writes it so: Card')

    def test_files(self):
        with open(self.path("kept"), "w", encoding="ascii") as file:
            file.write("mine")
        self.prepare(HEADER + GOOD, "-o", "kept", status=2)
        self.assertIn("kept: is there already", self.told)
        with open(self.path("kept"), "rb") as file:
            self.assertEqual(file.read(), b"mine")
        self.assertEqual(subprocess.run([sys.executable, PROGRAM, self.path("none")],
                                        capture_output=True).returncode, 2)

    def test_memory_for_each_line(self):
        peaks = []
        for lines in (1000, 101000):
            with open(self.path("big.csv"), "w", encoding="ascii") as file:
                file.writelines(f"a{i},b{i},c{i},{i * 7919:016}\n" for i in range(lines))
            child = subprocess.Popen([sys.executable, PROGRAM, "big.csv"], cwd=self.folder,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = status
            self.assertEqual(status, 0)
            os.unlink(self.path("big.tsv"))
            peaks.append(usage.ru_maxrss * 1024)
        self.assertLess(peaks[1] - peaks[0], 100000 * 250)  # the first blocks count as well


class Findable(Preparing):
    FOUND = ("4111 1111-1111 1111", "DE89 3704 0044 0532 0130 00", "+1 555-123-4567", "(555) 123 4567",
             "12.05.1980", "12/05/1980", "O’Brien", "AB_12", "4111\u00a01111", "SW1A 1AA", "+49 (0)30/12",
             "St. 12", "1 " * 16 + "1", "7-" + "1" * 63)
    NOT_FOUND = ("Anna Smith", "ABCDE 12", "AB 12 CD", "4111–1111", "+49.30.12", "1" + " " * 9 + "2",
                 "Müller 12", "12.5-A", "AB_12 3", "1 " * 32 + "1" * 33, "#’ 1",
                 "1" + "/1" * 9 + " 1")

    def test_findable(self):
        for values, found in ((self.FOUND, True), (self.NOT_FOUND, False)):
            for value in values:
                self.assertEqual(is_found(value), found, value)

    @unittest.skipUnless("DSMAKE" in os.environ and "DSSCAN" in os.environ, "DSMAKE or DSSCAN not set")
    def test_as_the_scanner_finds(self):
        for value in self.FOUND + self.NOT_FOUND:
            self.prepare(f"{value}\n", "--schema", "Number,CCNUMBER", "--header", "no",
                         "--delimiter", "TAB")
            subprocess.run([os.environ["DSMAKE"], *self.command[1:]], cwd=self.folder, check=True)
            found = subprocess.run([os.environ["DSSCAN"], "-q", "a b.ds", "-"], cwd=self.folder,
                                   input=f"so: {value}\n".encode())
            self.assertEqual(found.returncode, 0 if value in self.FOUND else 1, value)


if __name__ == "__main__":
    unittest.main()
