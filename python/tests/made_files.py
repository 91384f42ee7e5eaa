"""Files as other programs make them, for the tests of dsextract."""
import gzip
import io
import zipfile
from email.message import EmailMessage

W = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
S = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
O = "urn:oasis:names:tc:opendocument:xmlns:"


def zipped(members, method=zipfile.ZIP_DEFLATED):
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", method) as archive:
        for name, data in members.items():
            archive.writestr(name, data)
    return file.getvalue()


def docx(body):
    return zipped({"[Content_Types].xml": "<Types/>", "word/media/image1.png": b"\x89PNG\0\1",
                   "word/document.xml": f'<w:document xmlns:w="{W}">{body}</w:document>'})


def xlsx(strings, rows):
    return zipped({"[Content_Types].xml": "<Types/>",
                   "xl/worksheets/sheet1.xml": f'<worksheet xmlns="{S}">{rows}</worksheet>',
                   "xl/sharedStrings.xml": f'<sst xmlns="{S}">{strings}</sst>'})


def odt(text):
    return zipped({
        "mimetype": "application/vnd.oasis.opendocument.text", "META-INF/manifest.xml": "<m/>",
        "content.xml": f'<o:document-content xmlns:o="{O}office:1.0" xmlns:text="{O}text:1.0">'
                       f"{text}</o:document-content>"})


def mail(text, html=None, attached=None, subject="Grüße an Bülow"):
    message = EmailMessage()
    message["From"] = "Zoë Łukasz <zoe@example.com>"
    message["To"] = "a@example.com"
    message["Subject"] = subject
    message.set_content(text, charset="iso-8859-1", cte="quoted-printable")
    if html:
        message.add_alternative(html, subtype="html", charset="utf-8", cte="quoted-printable")
    for name, data in (attached or {}).items():
        message.add_attachment(data, "application", "octet-stream", filename=name)
    return message.as_bytes()


def gzipped(data, times=1):
    for _ in range(times):
        data = gzip.compress(data)
    return data


def pdf(text):
    """One page with one line."""
    content = f"BT /F 12 Tf 20 20 Td ({text}) Tj ET".encode()
    objects = [b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[3 0 R]/Count 1>>",
               b"<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 50]/Contents 4 0 R"
               b"/Resources<</Font<</F<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>",
               b"<</Length %d>>stream\n%s\nendstream" % (len(content), content)]
    file = b"%PDF-1.4\n"
    places = []
    for number, thing in enumerate(objects, 1):
        places.append(len(file))
        file += b"%d 0 obj%s endobj\n" % (number, thing)
    table = b"".join(b"%010d 00000 n \n" % place for place in places)
    return file + (b"xref\n0 5\n0000000000 65535 f \n%strailer<</Size 5/Root 1 0 R>>\nstartxref\n"
                   b"%d\n%%%%EOF\n" % (table, len(file)))
