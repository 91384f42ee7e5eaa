"""The example of a cluster beside one run of the scanner, also when a worker is lost."""
import importlib.util
import os
import signal
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path

PROGRAM = Path(__file__).parents[2] / "examples/cluster/scan_corpus.py"


@unittest.skipUnless(importlib.util.find_spec("distributed"), "python3-distributed is not there")
class ScanCorpus(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.place = Path(place.name)
        (self.place / "in").write_bytes("".join(f"Ann{i}\tO'Neil {i}\n" for i in range(500)).encode())
        subprocess.run([os.environ["DSMAKE"], "-k", "Name", "-s", "First,Simple;Name,SimpleNC",
                        "-i", "in", "-o", "out"], cwd=self.place, check=True)
        for i in range(400):
            folder = self.place / "texts" / f"f{i % 7}"
            folder.mkdir(parents=True, exist_ok=True)
            text = f"Ann{i}\x01 \xff" + f"o'neil\t\n {i} " * 3 + "word and word. " * 20000
            (folder / f"t{i}\n").write_bytes(text.encode("latin-1"))
        os.symlink("f1", self.place / "texts/link")

    def test_a_worker_is_lost(self):
        warnings.simplefilter("ignore")  # those of distributed; unittest sets them back
        from distributed import Client, LocalCluster
        expected = subprocess.run([os.environ["DSSCAN"], "--json", "out", "texts"], cwd=self.place,
                                  check=True, capture_output=True, encoding="utf-8").stdout
        self.assertEqual(expected.count("\n"), 400)
        with LocalCluster(n_workers=4, threads_per_worker=1, dashboard_address=None) as cluster:
            with subprocess.Popen(
                    [sys.executable, PROGRAM, "--scheduler", cluster.scheduler_address, "out",
                     str(self.place / "texts")], cwd=self.place, stdout=subprocess.PIPE,
                    encoding="utf-8") as process:
                with Client(cluster) as client:
                    workers = list(client.run(os.getpid).values())
                first = process.stdout.readline()
                os.kill(workers[1], signal.SIGKILL)
                self.assertIsNone(process.poll(), "it was in the middle")
                found = first + process.stdout.read()
            self.assertEqual(process.returncode, 0)
        self.assertEqual(found, expected.replace('"texts/', f'"{self.place}/texts/'))

    def test_faults(self):
        for arguments, message in ((["none", "texts"], "none: 0xC2012515"),):
            outcome = subprocess.run([sys.executable, PROGRAM, *arguments], cwd=self.place,
                                     check=False, capture_output=True, encoding="utf-8")
            self.assertEqual(outcome.returncode, 2)
            self.assertIn(message, outcome.stderr)
