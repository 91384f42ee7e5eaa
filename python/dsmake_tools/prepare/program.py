"""dsprepare: the command line."""
import argparse
import os
import signal
import stat
import sys

from . import Fault
from .. import VERSION
from ..shown import shown
from .new_file import NewFile
from .preparation import Preparation
from .report import Report


def parse(arguments):
    parser = argparse.ArgumentParser(
        prog="dsprepare", description="Writes the text that dsmake takes from a table in CSV or TSV, "
        "says what is wrong with it, and prints the dsmake command for it.")
    parser.add_argument("file", metavar="TABLE")
    parser.add_argument("-o", "--output", metavar="FILE", help="instead of NAME.tsv")
    parser.add_argument("--schema", metavar="'NAME,TYPE;...'", help="the fields, as dsmake takes them")
    parser.add_argument("--keys", metavar="NAME,...", help="the fields that can be looked up")
    parser.add_argument("--header", choices=("yes", "no"), help="whether the first line names fields")
    parser.add_argument("--encoding", metavar="NAME", help="of the table, such as cp1252")
    parser.add_argument("--delimiter", metavar="CHARACTER", help="what stands between two fields")
    parser.add_argument("--drop", action="store_true",
                        help="leave out the records that a build cannot take, and repeated ones")
    parser.add_argument("--version", action="version", version=f"%(prog)s {VERSION}")
    return parser.parse_args(arguments)


def output_path(options):
    name = os.path.splitext(os.path.basename(options.file))[0] + ".tsv"
    path = options.output or name
    return "./" + path if path.startswith("-") else path


def prepare(options, report):
    if not stat.S_ISREG(os.stat(options.file).st_mode):
        raise Fault("not a plain file")
    path = output_path(options)
    with open(options.file, "rb") as file, NewFile(path) as new:
        preparation = Preparation(options, file, report)
        if not preparation.run(file, new.write):
            return 1
        new.keep()
        print(preparation.command(path), flush=True)
    return 0


def main(arguments):
    options = parse(arguments)
    report = Report(options.file)
    sys.stdout.reconfigure(errors="surrogateescape")  # a name of any bytes comes out as it is
    for number in (signal.SIGTERM, signal.SIGHUP):  # so that a half-written file is removed
        signal.signal(number, lambda *_: sys.exit(2))
    try:
        return prepare(options, report)
    except Fault as fault:
        report.say(str(fault))
    except MemoryError:
        report.say("There is not enough memory.")
    except OSError as fault:
        name = fault.filename if isinstance(fault.filename, str) else None
        elsewhere = f"{shown(name)}: " if name not in (None, options.file) else ""
        report.say(f"{elsewhere}{fault.strerror or fault}")
    except KeyboardInterrupt:
        report.clear()
    return 2
