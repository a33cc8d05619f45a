"""Runs what the pages show and checks what they say about the tree.

    docs_test.py SOURCE_FOLDER MESSAGE_PEER README_PROGRAM UNTRUSTED_TEXT_PROGRAM MEMORY_FACTOR
"""

import json
import pathlib
import re
import subprocess
import sys
import unittest

SOURCE = pathlib.Path(sys.argv[1])
MESSAGE_PEER, README_PROGRAM, UNTRUSTED_TEXT_PROGRAM, MEMORY_FACTOR = sys.argv[2:6]
PAGES = [*sorted(SOURCE.glob("*.md")), *sorted((SOURCE / "docs").rglob("*.md"))]


def page(name):
    return (SOURCE / name).read_text(encoding="utf-8")


def sections(text):
    """Title and text of each section of the second level, which ends with the next heading of either level."""
    return re.findall(r"^## ([^\n]+)\n(.*?)(?=^##? |\Z)", text, re.MULTILINE | re.DOTALL)


def table(text, *titles):
    """The rows of the table with these column titles; cells without the quotes of code."""
    header = r"^\| " + r" \| ".join(map(re.escape, titles)) + r" \|\n\|[-|]+\n((?:\|.*\n?)*)"
    found = re.search(header, text, re.MULTILINE)
    rows = found.group(1).splitlines() if found else []
    return [[cell.strip().strip("`") for cell in row.strip()[1:-1].split("|")] for row in rows]


def blocks(text, language):
    return re.findall(rf"^```{language}\n(.*?)\n```$", text, re.MULTILINE | re.DOTALL)


def without_code(text):
    return re.sub(r"^```.*?^```$|`[^`\n]*`", "", text, flags=re.MULTILINE | re.DOTALL)


def read(cases):
    """What the library answers to each (class, text)."""
    run = subprocess.run([MESSAGE_PEER, "read"], input="".join(f"{name}\t{text}\n" for name, text in cases),
                         stdout=subprocess.PIPE, check=True, encoding="utf-8")
    return [line.split("\t") for line in run.stdout.split("\n")[:-1]]


def key_paths(schema, definitions, path=""):
    """The paths of all members and items that a schema describes, in the notation of the key tables."""
    while "$ref" in schema:
        schema = definitions[schema["$ref"].removeprefix("#/$defs/")]
    for key, below in schema.get("properties", {}).items():
        yield path + key
        if below is not True:
            yield from key_paths(below, definitions, path + key + "/")
    if "items" in schema:
        yield path + "[]"
        yield from key_paths(schema["items"], definitions, path + "[]/")
    if isinstance(schema.get("additionalProperties"), dict):
        yield path + "*"


class Messages(unittest.TestCase):
    sections = sections(page("docs/messages.md"))[1:]

    def check(self, cases, expected, relevant=lambda answer: answer):
        self.assertGreater(len(cases), 0)
        for case, answer, wanted in zip(cases, read(cases), expected, strict=True):
            with self.subTest(case=case):
                self.assertEqual(relevant(answer), wanted)

    def test_every_section_has_one_example_and_it_is_written_as_it_was_read(self):
        cases = []
        for name, text in self.sections:
            examples = blocks(text, "json")
            self.assertEqual(len(examples), 1, name)
            cases.append((name, examples[0]))
        self.assertEqual(len(cases), 18)
        self.check(cases, [["written", text] for _, text in cases])

    def test_texts_are_written_afterwards_as_the_tables_say(self):
        rows = [(name, *row) for name, text in self.sections
                for row in table(text, "Text read", "Text written afterwards")]
        self.check([row[:2] for row in rows], [["written", row[2]] for row in rows])

    def test_texts_are_refused_with_the_errors_of_the_tables(self):
        rows = [(name, *row) for name, text in self.sections for row in table(text, "Text refused", "Error")]
        self.check([row[:2] for row in rows], [["refused", row[2]] for row in rows],
                   lambda answer: [answer[0], answer[-1]])

    def test_errors_are_those_of_the_page_on_errors(self):
        rows = table(page("docs/errors.md"), "Class", "Text", "Exception", "what()")
        self.check([row[:2] for row in rows], [["refused", *row[2:]] for row in rows])

    def test_key_tables_have_the_keys_of_the_schemas(self):
        documented = {name: {row[0] for row in table(text, "Key", "Kind", "Required", "Read", "Member")}
                      for name, text in self.sections}
        schemas = [json.loads(path.read_text(encoding="utf-8")) for path in (SOURCE / "docs/schema").glob("*.json")]
        self.assertGreater(len(schemas), 0)
        for schema in schemas:
            definitions = schema["$defs"]
            written = set(key_paths(definitions["written"], definitions))
            # The body of the mapping has one member an attribute; "id" is the only one with a name of its own.
            if schema["title"] == "XmlAttrToEventMappingResponse":
                written.add("body/id")
            self.assertEqual(documented[schema["title"]], written, schema["title"])


class Programs(unittest.TestCase):
    def test_program_of_the_readme_prints_what_the_readme_says(self):
        run = subprocess.run([README_PROGRAM], stdout=subprocess.PIPE, check=True, encoding="utf-8")
        self.assertEqual(run.stdout.rstrip("\n"), blocks(page("README.md"), "text")[0])

    def untrusted(self, text):
        run = subprocess.run([UNTRUSTED_TEXT_PROGRAM], input=text, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             encoding="utf-8", timeout=60)
        return run.returncode, run.stdout, run.stderr

    def test_untrusted_text_without_parameters_is_read(self):
        text = '{"body":{"eventlist":[{"id":1,"name":"open"},{"id":2,"name":"close","param1_name":"x"}],"id":-1},"header":""}'
        self.assertEqual(self.untrusted(text), (0, "open\nclose\n", ""))

    def test_untrusted_text_with_a_parameter_is_refused(self):
        text = ('{"body":{"eventlist":[{"id":1,"name":"open"},{"id":2,"name":"set","param0_default":0,"param0_name":"x",'
                '"param0_type":"int"}],"id":-1},"header":""}')
        self.assertEqual(self.untrusted(text), (1, "", "refused: an event has a parameter\n"))

    def test_untrusted_text_of_another_shape_is_refused(self):
        for text, reason in (("", "line 1, column 1: expected a value, found the end of the text"),
                             ("{}", 'no member named "body"'),
                             ('{"body":{"eventlist":[1]}}', "expected object, found integer")):
            with self.subTest(text=text):
                self.assertEqual(self.untrusted(text), (1, "", f"refused: {reason}\n"))

    def test_memory_stays_below_the_figure_of_the_security_page(self):
        stated = int(re.search(r"at most (\d+) bytes of memory for each byte", page("SECURITY.md")).group(1))
        run = subprocess.run([MEMORY_FACTOR], stdout=subprocess.PIPE, check=True, encoding="utf-8")
        factors = {name: float(factor) for name, factor in
                   (line.rsplit(" ", 1) for line in run.stdout.splitlines())}
        self.assertGreater(len(factors), 5)
        worst = max(factors.values())
        self.assertLessEqual(worst, stated, factors)
        self.assertGreater(worst, 0.9 * stated, "the page may promise more")


class Pages(unittest.TestCase):
    def test_links_lead_to_files(self):
        links = [(source, target) for source in PAGES
                 for target in re.findall(r"\]\(([^)]+)\)", without_code(source.read_text(encoding="utf-8")))]
        self.assertGreater(len(links), 20)
        for source, target in links:
            if not re.match(r"[a-z]+:", target):
                with self.subTest(source=source, target=target):
                    self.assertTrue((source.parent / target.split("#")[0]).exists())

    def test_overview_has_a_line_on_every_folder_that_is_built(self):
        described = {row[0].rstrip("/") for row in table(page("docs/overview.md"), "Folder", "What is in it")}
        built = {path.parent.relative_to(SOURCE).as_posix()
                 for pattern in ("*/CMakeLists.txt", "msgs/*/CMakeLists.txt", "tools/*/CMakeLists.txt")
                 for path in SOURCE.glob(pattern)} - {"msgs", "tools"}
        self.assertGreater(len(built), 5)
        self.assertEqual(built - described, set())
        for folder in described:
            self.assertTrue((SOURCE / folder).is_dir(), folder)

    def test_picture_of_the_readme_shows_the_states_of_the_example(self):
        picture = page("docs/images/door_controller.svg")
        messages = map(json.loads, page("examples/conversations/door.jsonl").splitlines())
        transitions = next(message["body"]["statelist"] for message in messages
                           if "statelist" in message.get("body", {}))
        states = {transition[end] for transition in transitions for end in ("startstate", "endState")}
        self.assertEqual(states - set(re.findall(r">(\w+)</text>", picture)), set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
