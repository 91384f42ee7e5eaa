"""dsextract: what comes out of each kind of file, its bounds, and what is said of broken ones."""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from made_files import docx, gzipped, mail, odt, pdf, xlsx, zipped

PROGRAM = os.path.join(os.path.dirname(os.path.realpath(__file__)), "../dsextract")
MIB = 1 << 20


class Extracting(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "a file")

    def run_on(self, data, *options, **environment):
        with open(self.path, "wb") as file:
            file.write(data)
        done = subprocess.run([sys.executable, PROGRAM, *options, self.path], capture_output=True,
                              env={**os.environ, **environment}, timeout=300)
        self.messages = done.stderr.decode()
        for line in self.messages.splitlines():
            self.assertTrue(line.startswith(self.path + ": "), line)
        self.assertEqual(done.returncode, 2 if self.messages else 0)
        return done.stdout

    def text_of(self, data):
        """Each stretch of white space as one blank, where nothing may be wrong."""
        text = " ".join(self.run_on(data).decode().split())
        self.assertEqual(self.messages, "")
        return text

    def fault_of(self, data, *options):
        out = self.run_on(data, *options)
        self.assertEqual(self.messages.count("\n"), 1, self.messages)
        self.fault = self.messages[len(self.path) + 2:].strip()
        return out


class Kinds(Extracting):
    def test_text_is_left_as_it_stands(self):
        for text in (b"", b"Anna,\xfc\xff\0\r\nTo: nobody\n\n", "\ufeffÜ".encode("utf-16"),
                     b"Note: a\nto: b c\nno field\n", b"From here on\nnothing"):
            self.assertEqual(self.run_on(text), text)
            self.assertEqual(self.messages, "")

    def test_mail(self):
        html = "<p>Dear&nbsp;<b>Sm</b>ith,<td title='O&#39;Brien'>x" + "y" * 80
        data = mail("Bülow = ü\n", html, {
            "a.docx": docx("<w:p><w:r><w:t>An</w:t></w:r><w:r><w:t>na</w:t></w:r></w:p><w:p/>"),
            "b.bin": b"To: c\nSubject: =?gb2312?q?=C0?=\n =?GB2312*zh?B?7g==?= b\n\ninner\n",
            "c.txt": "Zoë".encode("utf-16")})
        text = self.text_of(data)
        for part in ("From: Zoë Łukasz <zoe@example.com> To:", "Subject: Grüße an Bülow Bülow = ü ",
                     "Dear Smith, O'Brien x" + "y" * 80, " a.docx Anna ", "Subject: 李 b inner",
                     "c.txt Zoë"):
            self.assertIn(part, text)

    def test_charsets_as_they_are_meant(self):
        head = b"From: a\nSubject: b\nContent-Type: text/plain; charset=%s\n\n"
        for charset, raw, meant in ((b"iso-8859-1", b"\x80\x92", "€’"), (b"us-ascii", b"\x92", "’"),
                                    (b"utf-8", b"\xc3\xbc", "ü"), (b"GB2312", b"\xc0\xee", "李"),
                                    (b"utf-8", b"\xff", "\udcff"), (b"x; x=y", b"\xc3\xbc", "ü")):
            out = self.run_on(head % charset + raw).decode("utf-8", "surrogateescape")
            self.assertIn(meant, out, charset)
        for charset in (b"punycode", b"rot13"):
            self.fault_of(head % charset + b"\xc3\xbc" * 9)
            self.assertEqual(self.fault, "a charset that is unknown")

    def test_mailbox(self):
        one = b"From a@b Mon Jan  1 00:00:00 2024\n%s\n>From the start\n\nFrom now on\n\n"
        out = self.run_on(one % mail("Bülow") + one % mail("Zoë", "<i>Łuk</i>asz")).decode()
        self.assertEqual(out.count("Subject: Grüße an Bülow"), 2)
        self.assertEqual(out.count("\nFrom the start\n\nFrom now on\n"), 2)
        self.assertIn("Łukasz", out[len(out) // 2:])

    def test_html(self):
        self.assertEqual(
            self.text_of(b"<!-- a --><HTML><meta charset=utf-8><style>p{x:y}</style>A&uuml;<br>\xc3\xbc"
                         b"<a title='>x' href=\"mailto:b@c\">c</a>d<script>'<e>'</script>1 < 2"),
            "a Aü ü >x b@c cd '<e>' 1 < 2")

    def test_documents(self):
        text = self.text_of(xlsx("<si><t>An</t><rPh><t>x</t></rPh><t>na</t></si><si><t>Ü</t></si>",
                                 '<row><c t="s"><v>0</v></c><c><v>4.111111111111111E+15</v></c>'
                                 '<c t="inlineStr"><is><t>in</t></is></c><c t="s"><v>9</v></c></row>'
                                 '<row><c t="s"><v>1</v></c><c t="str"><v>f</v></c></row>'))
        self.assertEqual(text, "Anna 4111111111111111 in Ü f")
        self.assertEqual(self.text_of(odt("<text:p>Sm<text:span>ith</text:span><text:s/>a</text:p>"
                                          "<text:p>b</text:p>")).split()[-3:], ["Smith", "a", "b"])
        self.assertEqual(self.text_of(docx("<w:p><w:t>a</w:t><w:tab/><w:delText>b</w:delText>"
                                           "<w:posOffset>12</w:posOffset></w:p><w:p><w:t>c</w:t></w:p>"
                                           )), "a b c")

    def test_archives(self):
        inner = zipped({"d/b.html": "<p>B</p>", "c.gz": gzipped(b"C\n"), "a": mail("Bülow")})
        text = self.text_of(gzipped(zipped({"z.zip": inner, "y": "Y"})))
        self.assertEqual(text.split()[:2], ["B", "C"])
        self.assertEqual(text.split()[-1], "Y")
        self.assertIn("Bülow", text)
        self.assertEqual(self.run_on(gzipped(b"a") + gzipped(b"b")), b"ab")

    def test_pdf(self):
        if shutil.which("pdftotext"):
            self.assertIn("Anna Smith", self.text_of(pdf("Anna Smith")))
            self.fault_of(b"%PDF-1.4\nnothing")
            self.assertIn("pdftotext cannot read", self.fault)
        with tempfile.TemporaryDirectory() as folder:
            out = self.run_on(pdf("Anna"), PATH=folder)
        self.assertEqual(out, pdf("Anna"))
        self.assertIn("no pdftotext", self.messages)


class Bounds(Extracting):
    def test_what_comes_out(self):
        data = gzipped(b"0123456\n" * (MIB // 8) * 101)
        self.assertEqual(len(self.fault_of(data)), 100 * MIB)
        self.assertEqual(self.fault, "more than 100 MiB come out of it; the rest is left out")
        self.assertEqual(len(self.run_on(data, "--limit", "101")), 101 * MIB)
        self.assertEqual(self.messages, "")

    def test_depth(self):
        self.assertEqual(self.run_on(gzipped(b"deep", 8)), b"deep")
        self.assertEqual(self.fault_of(gzipped(b"deep", 9)), b"")
        self.assertEqual(self.fault, "archives in archives, more than 8 deep")

    def test_work_is_bounded_too(self):
        # Without any text, so that what comes out bounds nothing.
        bomb = zipped({"[Content_Types].xml": "", "a.xml": f"<a><!--{' ' * (2 * MIB)}--></a>"})
        for _ in range(4):
            bomb = zipped({str(i): bomb for i in range(9)})
        many = b"From: a\nSubject: b\nContent-Type: multipart/mixed; boundary=x\n\n" + b"--x\n" * 300000
        nested = b"".join(b"From: a\nTo: b\nContent-Type: multipart/mixed; boundary=%d\n\n--%d\n"
                          % (i, i) for i in range(3000))
        entity = '<!DOCTYPE a [<!ENTITY b "bbbbbbbbbb"><!ENTITY c "&b;&b;">]><a>&c;</a>'
        begin = time.process_time(), os.times().children_user
        for data, fault in ((bomb, "MiB"), (many, "cut short"), (nested, "parts"),
                            (zipped({"[Content_Types].xml": "", "word/a.xml": entity}), "XML"),
                            (zipped({"[Content_Types].xml": "", "x.xml": "<a>" * 999999}), "XML")):
            self.run_on(data, "--limit", "4")
            self.assertIn(fault, self.messages)
        for page in ("<a '" * 300000, '<a " > " ' * 200000, "<!--" * 300000, "<script>" * 200000,
                     "&#" + "9" * 500000, "<!---->" * 9000 + "x"):
            self.run_on(b"<html>" + page.encode())
            self.assertEqual(self.messages, "")
        self.assertLess(os.times().children_user - begin[1], 60)


class Broken(Extracting):
    def test_gives_what_could_be_had(self):
        text = os.urandom(60000).hex().encode()
        for data in (gzipped(text)[:-9], zipped({"a": b"first\n", "b": text})[:-3000],
                     zipped({"a": text})[:-1500]):
            out = self.fault_of(data)
            self.assertIn("damaged or cut short", self.fault)
            self.assertTrue(text[:50000] in out or out.startswith(b"first"), out[:9])
        out = self.fault_of(mail("Bülow", None, {"a": text})[:-40000])
        self.assertIn("a mail is cut short", self.messages)
        self.assertIn(text[:9000], out)
        broken = docx("<w:p><w:t>An</w:t></w:p><w:p>&")
        self.assertIn(b"An\n", self.fault_of(broken))
        self.assertIn("XML", self.fault)

    def test_says_what_cannot_be_read(self):
        locked = bytearray(zipped({"a": b"x" * 99}))
        for mark, flags in ((b"PK\1\2", 8), (b"PK\3\4", 6)):
            locked[locked.find(mark) + flags] |= 1
        self.fault_of(bytes(locked))
        self.assertEqual(self.fault, "a zip archive needs a password")
        for path, why in ((self.path + "x\x1b", "No such file"), ("/", "not a plain file")):
            done = subprocess.run([sys.executable, PROGRAM, path], capture_output=True)
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            self.assertTrue(done.stderr.decode().startswith(path.replace("\x1b", "\\x1B") + ": " + why))

    def test_tells_of_a_full_disk(self):
        self.run_on(b"x")
        with open("/dev/full", "wb") as full:
            done = subprocess.run([sys.executable, PROGRAM, self.path], stdout=full,
                                  stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr.decode()),
                         (2, f"{self.path}: No space left on device\n"))


@unittest.skipUnless("DSMAKE" in os.environ and "DSSCAN" in os.environ, "DSMAKE or DSSCAN not set")
class Scanning(Extracting):
    def test_customers_in_a_mail(self):
        folder = os.path.dirname(self.path)

        def run(program, *arguments):
            return subprocess.run([os.environ.get(program, program), *arguments], cwd=folder,
                                  capture_output=True, check=True).stdout.decode()

        with open(os.path.join(folder, "t.tsv"), "w", encoding="utf-8") as file:
            file.write("Zoë\tO'Brien\t4111111111111111\nAnna\tBülow\t4222222222222222\n")
        run("DSMAKE", "-k", "Name", "-s", "First,Simple;Name,SimpleNC;Card,CCNUMBER", "-i", "t.tsv",
            "-o", "t.ds")
        body = "<w:p><w:t>Anna Bü</w:t><w:t>low 4222-2222-2222-2222</w:t></w:p>"
        with open(self.path, "wb") as file:
            file.write(mail("See below.", "<p>Zoë <b>O&rsquo;Br</b>ien, 4111 1111 1111 1111" + "=" * 70,
                            {"a": docx(body)}, "Hello"))
        self.assertEqual(os.system(f"cd '{folder}' && $DSSCAN -q -m 3 t.ds 'a file'") >> 8, 1)
        lines = run("DSSCAN", "-m", "3", "--pre", PROGRAM, "t.ds", "a file").splitlines()
        self.assertEqual([line.split('"')[1] for line in lines], ["O’Brien", "Bülow"])


if __name__ == "__main__":
    unittest.main()
