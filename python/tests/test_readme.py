"""What README.md shows: its commands with their output, and its table of columns with a scan of each
text. README.md is the source of the cases, so that the two cannot part.

DSMAKE, DSSCAN and DSLOOKUP name those programs; without them they are those of the PATH.
"""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.join(os.path.dirname(os.path.realpath(__file__)), "../..")
TYPES = ("Simple", "SimpleNC", "CCNUMBER")


def read(name):
    with open(os.path.join(ROOT, name), encoding="utf-8") as file:
        return file.read()


class Readme(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.folder = os.path.join(place.name, "work")
        shutil.copytree(os.path.join(ROOT, "examples"), self.folder)
        programs = os.path.join(place.name, "bin")
        os.mkdir(programs)
        for name in ("dsmake", "dsscan", "dslookup"):
            if name.upper() in os.environ:
                os.symlink(os.environ[name.upper()], os.path.join(programs, name))
        if os.listdir(programs):
            os.symlink(os.path.realpath(os.path.join(ROOT, "python/dsprepare")),
                       os.path.join(programs, "dsprepare"))
        self.environment = {**os.environ, "PATH": programs + os.pathsep + os.environ["PATH"]}

    def run_in_shell(self, command, text=None):
        return subprocess.run(["sh", "-c", command], cwd=self.folder, env=self.environment, input=text,
                              encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def test_commands_print_what_is_shown(self):
        blocks = re.findall(r"^```\n(\$ .*?)^```$", read("README.md"), re.M | re.S)
        self.assertGreaterEqual(len(blocks), 4)
        for block in blocks:
            for session in block.split("$ ")[1:]:
                command, output = re.fullmatch(r"((?:[^\n]*\\\n)*[^\n]*\n)(.*)", session, re.S).groups()
                self.assertEqual(self.run_in_shell(command).stdout, output, command)

    def test_columns_are_found_as_the_tables_say(self):
        for document, least in (("README.md", 10), ("docs/scanning.md", 6)):
            rows = [line.split("|")[1:-1] for line in read(document).splitlines()
                    if line.startswith("|") and any(f"`{name}`" in line for name in TYPES)]
            self.assertGreaterEqual(len(rows), least)
            for row in rows:
                *begin, found, other = ([re.findall("`([^`]+)`", cell) for cell in row])
                value, = (word for cell in begin for word in cell if word not in TYPES)
                kind, = (word for cell in begin for word in cell if word in TYPES)
                self.build(value, kind)
                for text, status in [*((text, 0) for text in found), *((text, 1) for text in other)]:
                    done = self.run_in_shell("dsscan -q one.ds -", f"so: {text}\n")
                    self.assertEqual((done.returncode, done.stdout), (status, ""), (value, kind, text))

    def build(self, value, kind):
        with open(os.path.join(self.folder, "one.tsv"), "w", encoding="utf-8") as file:
            file.write(value + "\n")
        done = self.run_in_shell(f"rm -f one.ds; dsmake -k A -s 'A,{kind}' -i one.tsv -o one.ds")
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_dsprepare_takes_the_types_of_the_table(self):
        rows = re.findall(r"^\| ([^|]+) \| `(\w+)` \| `([^`]+)` \|", read("README.md"), re.M)
        with open(os.path.join(self.folder, "kinds.csv"), "w", encoding="utf-8") as file:
            for place in (0, 2):
                file.write(",".join(row[place] for row in rows) + "\n")
        shown = self.run_in_shell("dsprepare kinds.csv 2>/dev/null").stdout
        for name, kind, _ in rows:
            self.assertIn(f"{name},{kind}", shown)


class Links(unittest.TestCase):
    def test_lead_to_what_is_installed(self):
        """README.md and docs/ are installed as they stand here."""
        for name in ["README.md", *("docs/" + name for name in os.listdir(os.path.join(ROOT, "docs"))
                                   if name.endswith(".md"))]:
            for link in re.findall(r"\]\(([^)#:]+)", read(name)):
                path = os.path.normpath(os.path.join(os.path.dirname(name), link))
                self.assertTrue(os.path.exists(os.path.join(ROOT, path)), (name, link))
                self.assertRegex(path, r"^(README|CHANGELOG)\.md$|^docs/[^/]+\.(md|svg)$", name)


if __name__ == "__main__":
    unittest.main()
