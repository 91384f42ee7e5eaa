"""dsextract: the command line."""
import argparse
import os
import signal
import stat
import sys

from .. import VERSION
from ..shown import shown
from .output import Full, Output
from .walk import extract_file


def parse(arguments):
    parser = argparse.ArgumentParser(
        prog="dsextract", description="Writes the text of a mail, mailbox, HTML page, document, PDF "
        "or archive to standard output, for dsscan --pre; what is none of these, as it stands.")
    parser.add_argument("file", metavar="FILE")
    parser.add_argument("--limit", type=positive, default=100, metavar="MIB",
                        help="how much may come out, in MiB (100)")
    parser.add_argument("--version", action="version", version=f"%(prog)s {VERSION}")
    return parser.parse_args(arguments)


def positive(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError("must be 1 at least")
    return number


def extract_path(path, output):
    """What is wrong goes to the output's faults; nothing that a file holds is let through as an
    exception."""
    try:
        if not stat.S_ISREG(os.stat(path).st_mode):  # before a pipe without a writer is opened
            return output.fault("not a plain file")
        with open(path, "rb") as source:
            extract_file(source, output)
    except Full:
        output.too_much()
    except MemoryError:
        output.fault("There is not enough memory.")
    except RecursionError:
        output.fault("nested too deeply")
    except OSError as fault:
        output.fault(fault.strerror or str(fault))
    except Exception as fault:  # whatever a library makes of what is broken
        output.fault(f"cannot be read: {fault!r:.200}")


def main(arguments):
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # a reader that has enough ends it, as usual
    options = parse(arguments)
    output = Output(sys.stdout.buffer, options.limit)
    extract_path(options.file, output)
    try:
        sys.stdout.buffer.flush()
    except OSError as fault:
        output.fault(fault.strerror)
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # or it is told again
    for line in output.fault_lines():
        print(f"{shown(options.file)}: {line}", file=sys.stderr)
    return 2 if output.faults else 0
