"""Runs gdb on a program and compares what the printers show.

    gdb_test.py GDB PRINTERS PROGRAM CORE_LIBRARY

The printers are put where gdb looks for those of the library, so that loading them is tested too.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

GDB, PRINTERS, PROGRAM, CORE_LIBRARY = sys.argv[1:5]
MARK = "==="


def gdb(*commands):
    """What each command prints at the breakpoint."""
    with tempfile.TemporaryDirectory() as folder:
        library = pathlib.Path(CORE_LIBRARY).resolve()
        script = pathlib.Path(folder, *library.parts[1:-1], library.name + "-gdb.py")
        script.parent.mkdir(parents=True)
        shutil.copy(PRINTERS, script)
        steps = ["set breakpoint pending off", "set print frame-arguments none", "break look", "run", "up"]
        for command in commands:
            steps += [f"echo {MARK}\\n", command]
        arguments = [GDB, "--batch", "-nx", "-iex", f"add-auto-load-scripts-directory {folder}", "-iex",
                     f"add-auto-load-safe-path {folder}", "-iex", "set debuginfod enabled off"]
        for step in steps:
            arguments += ["-ex", step]
        run = subprocess.run([*arguments, PROGRAM], stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                             env={"LC_ALL": "C.UTF-8", "PATH": "/usr/bin:/bin", "ASAN_OPTIONS": "detect_leaks=0"})
    outputs = run.stdout.split(MARK + "\n")[1:]
    if len(outputs) != len(commands):
        raise AssertionError(run.stdout + run.stderr)
    return [output.rstrip("\n") for output in outputs]


class Printers(unittest.TestCase):
    maxDiff = None

    def shows(self, cases):
        for (command, expected), output in zip(cases.items(), gdb(*cases), strict=True):
            with self.subTest(command=command):
                self.assertEqual(output, expected)

    def test_trees(self):
        self.shows({
            "output empty": "null",
            "output scalars": r'{null, true, false, -7, 2.5, "a \"b\"ü", {}, []}',
            "output subscribe.internal_": '{["clientname"] = "ui", ["commandid"] = 0, ["eventId"] = 7, '
                                          '["filterFreq"] = 0.0, ["filterType"] = 0, ["id"] = -4, '
                                          '["publisherName"] = "door"}',
        })

    def test_trees_are_indented(self):
        names = sorted(str(number) for number in range(30))
        members = ",\n".join(f'    ["{name}"] = {name}' for name in names)
        items = ", ".join(str(number) for number in range(30))
        tree = '{\n  ["items"] = {' + items + '},\n  ["numbers"] = {\n' + members + "\n  }\n}"
        self.shows({f"with print pretty on -- output {name}": tree for name in ("many", "read")})

    def test_tree_command_prints_json(self):
        many, scalars, command, deep = gdb("zelk-tree &many", "zelk-tree scalars", "zelk-tree subscribe",
                                           "zelk-tree deep")
        numbers = list(range(30))
        self.assertEqual(many, json.dumps(
            {"items": numbers, "numbers": {str(number): number for number in sorted(numbers, key=str)}}, indent=2))
        self.assertEqual(scalars, json.dumps([None, True, False, -7, 2.5, 'a "b"ü', {}, []], indent=2,
                                             ensure_ascii=False))
        self.assertEqual(json.loads(command), {
            "clientname": "ui", "commandid": 0, "eventId": 7, "filterFreq": 0.0, "filterType": 0, "id": -4,
            "publisherName": "door"})
        self.assertEqual(deep.count('"a": '), 3000)

    def test_messages_show_members_of_all_levels(self):
        self.shows({
            "output unregister": '{internal_ = null, commandId_ = 0, clientName_ = "", events_ = list of 2 = {7, 9}}',
            "output response": '{internal_ = null, eventId_ = 0, header_ = "from door", states_ = list of 1 = '
                               '{{name_ = "opens", transitionId_ = 1, startState_ = "Closed", endState_ = "Opening", '
                               'eventName_ = "open", eventId_ = 12, paramName_ = "", paramType_ = ""}}}',
        })

    def test_fields_show_key_state_and_value(self):
        self.shows({
            "output position": '{Angle = {key = "Angle", required = true, set = true, value_ = 1.5}, '
                               'Unit = {key = "Unit", required = false, set = false, value_ = ""}}',
        })


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
