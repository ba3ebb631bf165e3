"""Runs scripts/check_layers.py on small trees with one planted violation each."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parent.parent / "scripts" / "check_layers.py"

TABLE = """\
# comment
scan : Lib Kit

low : Low (Lib/LibExport) :
high : High : low
kit : Kit/parts/ : Lib/
"""

FILES = {
    "Lib/Low.h": '#include "Lib/LibExport.h"\n#include <vector>\n',
    "Lib/Low.cpp": '#include "Lib/Low.h"\n\n#include <QString>\n',
    "Lib/High.h": '#include "Lib/Low.h"\n',
    "Lib/High.cpp": '#include "High.h"\n',
    "Lib/HighPainting.cpp": '#include "Lib/High.h"\n#include "Lib/Low.h"\n',
    "Kit/parts/Part.h": '#include "Lib/High.h"\n#include "Lib/Low.h"\n',
    "Kit/parts/Part.cpp": '#include "Kit/parts/Part.h"\n',
}


class CheckLayers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.table = TABLE
        self.files = dict(FILES)

    def run_script(self, *options):
        for name, text in dict(self.files, **{"docs/layers.txt": self.table}).items():
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        command = [sys.executable, str(SCRIPT), "--root", str(self.root), *options]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def assert_complaints(self, *expected):
        """The run fails with exactly these lines."""
        result = self.run_script()
        self.assertEqual(result.stderr.splitlines(), list(expected))
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")

    def test_tree_in_order(self):
        result = self.run_script()
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, "3 layers, 7 files, 9 includes: in order\n")

    def test_upward_include_of_a_header(self):
        self.files["Lib/Low.h"] += '\n#  include "Lib/High.h"\n'
        self.assert_complaints('Lib/Low.h:4: layer "low" may not use layer "high": "Lib/High.h"')

    def test_upward_include_of_a_source(self):
        self.files["Lib/Low.cpp"] += "#include <Lib/High.h>\n"
        self.assert_complaints('Lib/Low.cpp:4: layer "low" may not use layer "high": "Lib/High.h"')

    def test_upward_include_beside_the_file(self):
        self.files["Lib/Low.cpp"] += '#include "High.h"\n'
        self.assert_complaints('Lib/Low.cpp:4: layer "low" may not use layer "high": "High.h"')

    def test_upward_include_by_dots(self):
        self.files["Lib/Low.cpp"] += '#include "../Kit/parts/Part.h"\n'
        self.assert_complaints(
            'Lib/Low.cpp:4: layer "low" may not use layer "kit": "../Kit/parts/Part.h"'
        )

    def test_source_without_header_goes_with_the_class_it_begins_with(self):
        self.files["Lib/LowMore.cpp"] = '#include "Lib/Low.h"\n#include "Lib/High.h"\n'
        self.assert_complaints(
            'Lib/LowMore.cpp:2: layer "low" may not use layer "high": "Lib/High.h"'
        )

    def test_library_reaching_into_the_kit(self):
        self.files["Lib/High.cpp"] += '#include "Kit/parts/Part.h"\n'
        self.assert_complaints(
            'Lib/High.cpp:2: layer "high" may not use layer "kit": "Kit/parts/Part.h"'
        )

    def test_include_of_a_missing_header(self):
        self.files["Lib/High.h"] += '#include "Lib/Gone.h"\n'
        self.assert_complaints('Lib/High.h:2: there is no header "Lib/Gone.h"')

    def test_generated_header_must_be_named(self):
        self.table = self.table.replace("(Lib/LibExport)", "")
        self.assert_complaints('Lib/Low.h:1: there is no header "Lib/LibExport.h"')

    def test_comments_and_strings_do_not_include(self):
        self.files["Lib/Low.cpp"] += (
            '/* the pattern "*/\n'
            'const char* glob = "*/*.h";\n'
            '// #include "Lib/High.h"\n'
            '/*\n#include "Lib/High.h"\n*/\n'
            'const char* code = R"x(\n#include "Lib/High.h"\n)x";\n'
        )
        self.assertEqual(self.run_script().returncode, 0)

    def test_include_after_comment_marks_in_a_string_is_seen(self):
        self.files["Lib/Low.cpp"] += 'const char* glob = "/*";\n#include "Lib/High.h"\n// */\n'
        self.assert_complaints('Lib/Low.cpp:5: layer "low" may not use layer "high": "Lib/High.h"')

    def test_header_without_layer(self):
        self.files["Lib/LowOther.h"] = ""
        self.files["Lib/Lost.cpp"] = ""
        self.assert_complaints(
            "Lib/Lost.cpp:1: belongs to no layer of docs/layers.txt",
            "Lib/LowOther.h:1: belongs to no layer of docs/layers.txt",
        )

    def test_circle(self):
        self.table = self.table.replace("LibExport) :", "LibExport) : kit")
        self.assert_complaints("docs/layers.txt:4: the layers go in a circle: low -> kit -> high -> low")

    def test_class_that_does_not_exist(self):
        self.table = self.table.replace(": High :", ": High Higher :")
        self.assert_complaints('docs/layers.txt:5: no header and no source is called "Higher"')

    def test_folder_that_does_not_exist(self):
        self.table += "more : Kit/more/ : kit\n"
        self.assert_complaints('docs/layers.txt:7: folder "Kit/more/" holds no header and no source')

    def test_layer_that_does_not_exist(self):
        self.table = self.table.replace(": low", ": low lower")
        self.assert_complaints('docs/layers.txt:5: no layer is called "lower"')

    def test_used_folder_without_layers(self):
        self.table = self.table.replace(": Lib/", ": Lib/ Other/")
        self.assert_complaints('docs/layers.txt:6: no layer has files in "Other/"')

    def test_class_in_two_layers(self):
        self.table = self.table.replace(": High :", ": High Low :")
        self.assert_complaints('docs/layers.txt:5: "Low" belongs to layer "low" already')

    def test_class_name_in_two_folders(self):
        self.files["Kit/Low.h"] = ""
        self.assert_complaints('docs/layers.txt:4: "Low" exists in several folders: Kit, Lib')

    def test_layer_named_twice(self):
        self.table += "low : :\n"
        self.assert_complaints('docs/layers.txt:7: layer "low" stands here a second time')

    def test_line_of_another_shape(self):
        self.table += "more Kit/parts\n"
        self.assert_complaints(
            'docs/layers.txt:7: expected "layer : classes : layers it may use"'
        )

    def test_nothing_to_look_at(self):
        self.table = "scan : Empty\n"
        self.assert_complaints(
            "docs/layers.txt:1: the folders to look at hold no header and no source"
        )
        self.table = "# nothing\n"
        self.assert_complaints('docs/layers.txt:1: no line "scan : folders" says what to look at')

    def test_missing_table(self):
        result = self.run_script("--table", "docs/none.txt")
        self.assertEqual(result.returncode, 1)
        self.assertIn("none.txt: no such file", result.stderr)

    def test_dot_leaves_out_what_a_longer_road_implies(self):
        result = self.run_script("--dot")
        self.assertEqual(result.returncode, 0)
        edges = [line.strip() for line in result.stdout.splitlines() if "->" in line]
        self.assertEqual(edges, ['"high" -> "low";', '"kit" -> "high";'])
        self.assertIn('"low" [label="low\\nLow"];', result.stdout)
        self.assertIn('subgraph "cluster_Kit"', result.stdout)
        self.assertTrue(result.stdout.startswith("digraph layers {\n"))
        self.assertTrue(result.stdout.endswith("}\n"))

    def test_help(self):
        result = self.run_script("--help")
        self.assertEqual(result.returncode, 0)
        self.assertIn("exit status:", result.stdout)
        self.assertIn("--dot", result.stdout)
        self.assertEqual(self.run_script("--nonsense").returncode, 2)


if __name__ == "__main__":
    unittest.main()
