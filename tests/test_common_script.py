"""Runs functions of scripts/common.sh; zr_build with a stub in place of cmake."""

import os
import pty
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parent.parent / "scripts" / "common.sh"

GOOD = """\
echo '[1/2] Building a.o'
echo '[2/2] Linking a'
"""

BAD = """\
echo '[1/2] Building a.o'
echo 'FAILED: a.o'
echo 'a.cpp:3:1: error: broken'
echo 'ninja: build stopped: subcommand failed.'
exit 1
"""


class KeepCopy(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.log = self.root / "line.log"
        self.copy = self.root / "review" / "line.log"
        self.write(self.log, "line")
        self.write(self.log.with_name("line.log.events"), "of the script")

    @staticmethod
    def write(path, text):
        path.write_text(text, encoding="utf-8")

    def keep(self):
        lines = f"set -euo pipefail; source {SCRIPT}; zr_keep_copy line.log review/line.log"
        subprocess.run(["bash", "-c", lines], cwd=self.root, check=True)
        beside = sorted(path for path in self.copy.parent.iterdir() if path != self.copy)
        return self.copy.read_text(encoding="utf-8"), {
            path.name: path.read_text(encoding="utf-8") for path in beside
        }

    def test_first_time(self):
        self.assertEqual(self.keep(), ("line", {"line.log.events": "of the script"}))

    def test_what_was_added_stays(self):
        self.keep()
        self.write(self.copy.with_name("line.log.events"), "of a person")
        self.write(self.copy.with_name("line.log.bottom"), "drawn")
        stay = {"line.log.bottom": "drawn", "line.log.events": "of a person"}
        self.assertEqual(self.keep(), ("line", stay))
        self.write(self.log, "another line")
        self.assertEqual(self.keep(), ("another line", stay))

    def test_nothing_beside(self):
        self.log.with_name("line.log.events").unlink()
        self.assertEqual(self.keep(), ("line", {}))


class BuildScript(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "scripts").mkdir()
        (self.root / "stubs").mkdir()
        shutil.copy(SCRIPT, self.root / "scripts")
        self.log = self.root / "build" / "dev.log"

    def build(self, configure, build, **streams):
        """Runs it with what cmake is to do."""
        stub = self.root / "stubs" / "cmake"
        stub.write_text(f'#!/bin/sh\nif [ "$1" = --preset ]; then\n{configure}\nelse\n{build}\nfi\n', encoding="utf-8")
        stub.chmod(0o755)
        environment = dict(os.environ, PATH=f"{stub.parent}:{os.environ['PATH']}", HOME=str(self.root))
        lines = "set -euo pipefail; source scripts/common.sh; zr_build dev; echo built"
        return subprocess.run(
            ["bash", "-c", lines, "run.sh"], cwd=self.root, env=environment, text=True, check=False, **streams
        )

    def build_to_file(self, configure, build):
        return self.build(configure, build, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def build_to_terminal(self, build):
        """What the terminal shows, in lines, and the exit status."""
        terminal, shell = pty.openpty()
        result = self.build("echo configured", build, stdout=shell, stderr=shell)
        os.close(shell)
        shown = b""
        try:
            while block := os.read(terminal, 4096):
                shown += block
        except OSError:  # the end of a terminal
            pass
        os.close(terminal)
        return shown.decode().splitlines(), result.returncode

    def test_good(self):
        result = self.build_to_file("echo configured", GOOD)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.stdout, "Building dev: 1 of 2\nBuilding dev: 2 of 2\nbuilt\n")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.log.read_text(encoding="utf-8"), "configured\n[1/2] Building a.o\n[2/2] Linking a\n")

    def test_failure_shows_the_errors(self):
        result = self.build_to_file("echo configured", BAD)
        self.assertIn("a.cpp:3:1: error: broken\n", result.stderr)
        self.assertEqual(result.stderr.splitlines()[-1], f"run.sh: building failed, see {self.log}")
        self.assertNotIn("built", result.stdout)
        self.assertEqual(result.returncode, 1)
        self.assertIn("error: broken", self.log.read_text(encoding="utf-8"))

    def test_failure_without_a_word(self):
        result = self.build_to_file("true", "exit 3")
        self.assertEqual(result.stderr, f"run.sh: building failed, see {self.log}\n")
        self.assertEqual(result.returncode, 1)

    def test_configuring_fails(self):
        result = self.build_to_file("echo 'CMake Error: no compiler'; exit 1", GOOD)
        self.assertEqual(
            result.stderr, f"CMake Error: no compiler\nrun.sh: configuring failed, see {self.log}\n"
        )
        self.assertEqual(result.returncode, 1)

    def test_terminal(self):
        lines, status = self.build_to_terminal(GOOD)
        self.assertEqual(lines[-1], "built")
        self.assertEqual(status, 0)

    def test_failure_on_a_terminal(self):
        lines, status = self.build_to_terminal(BAD)
        self.assertIn("a.cpp:3:1: error: broken", lines)
        # The terminal alone has the errors: nothing to see elsewhere.
        self.assertEqual(lines[-1], "run.sh: building failed")
        self.assertEqual(status, 1)


if __name__ == "__main__":
    unittest.main()
