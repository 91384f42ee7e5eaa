"""PDF by pdftotext, a program of its own."""
import os
import shutil
import subprocess
import threading

CHUNK = 1 << 16
MOST_SECONDS = 120


def extract_pdf(work, source):
    program = shutil.which("pdftotext")
    if program is None:
        work.output.fault("no pdftotext to read PDF with (Debian: poppler-utils)")
        source.seek(0)
        return work.copy(source)
    with in_memory(source) as file:
        # Its own words would not name the file.
        with subprocess.Popen([program, "-q", "-enc", "UTF-8", "-", "-"], stdin=file,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as child:
            timer = threading.Timer(MOST_SECONDS, child.kill)
            timer.start()
            try:
                for chunk in iter(lambda: child.stdout.read1(CHUNK), b""):
                    work.output.write(chunk)
            except BaseException:
                child.kill()
                raise
            finally:
                timer.cancel()
    if child.returncode != 0:
        work.output.fault("pdftotext cannot read a PDF to its end")


def in_memory(source):
    """A file for the child that no disk ever sees: these are customers' data."""
    file = os.fdopen(os.memfd_create("pdf"), "w+b")
    source.seek(0)
    shutil.copyfileobj(source, file)
    file.seek(0)
    return file
