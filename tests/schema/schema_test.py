"""Holds the JSON Schemas against the library, with an independent validator.

    schema_test.py SCHEMA_FOLDER GOLDEN_TEXTS MESSAGE_PEER

The library is asked through the program message_peer. Where a schema and the library cannot agree, for one of the
reasons that the README of the schemas lists, the reason is worked out here from the text alone; any other difference
fails.
"""

import copy
import json
import pathlib
import random
import subprocess
import sys
import unittest

from jsonschema import Draft202012Validator

SCHEMA_FOLDER = pathlib.Path(sys.argv[1])
GOLDEN_TEXTS = pathlib.Path(sys.argv[2])
MESSAGE_PEER = sys.argv[3]

STRANGE = [
    None, True, False, "", "text", "7", [], [[]], [1], [1.5], [True], ["x"], [None], {}, {"unknown": 1},
    0, 1, -1, -2, -3, -4, -5, -6, -7, -9, -10, 7, 2147483647, 2147483648, -2147483648, -2147483649, 4294967295,
    4294967286, 4294967291, 4294967292, 4294967296, -4294967300, 2**63 - 1, -(2**63), 2**63, -(2**63) - 1, 10**30,
    0.0, 0.5, 1.0, -1.0, -2.0, -2.9, -3.5, -4.0, -4.7, -5.0, -5.5, -6.0, -9.0, -10.7, 1e-6, 2.9, 1e300, 4294967296.0,
]


class Form:
    """The two forms of one message class."""

    def __init__(self, path):
        schema = json.loads(path.read_text(encoding="utf-8"))
        Draft202012Validator.check_schema(schema)
        self.name = schema["title"]
        self.accepted = Draft202012Validator(schema)
        self.written = Draft202012Validator({**schema, "$ref": "#/$defs/written"})


FORMS = {form.name: form for form in map(Form, sorted(SCHEMA_FOLDER.glob("*.json")))}


def peer(task, lines=()):
    run = subprocess.run([MESSAGE_PEER, task], input="".join(line + "\n" for line in lines), stdout=subprocess.PIPE,
                         check=True, encoding="utf-8")
    return [line.split("\t") for line in run.stdout.split("\n")[:-1]]


def written_messages():
    """Class and document of every text that the library writes by itself."""
    return [(name, json.loads(text)) for name, text in peer("write")]


def places(value, path=()):
    """The paths of all values in a document, that of the document first."""
    yield path
    children = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, child in children:
        yield from places(child, path + (key,))


def parent_of(document, path):
    for key in path[:-1]:
        document = document[key]
    return document


def changed(document, path, value):
    if not path:
        return copy.deepcopy(value)
    result = copy.deepcopy(document)
    parent_of(result, path)[path[-1]] = copy.deepcopy(value)
    return result


def without(document, path):
    result = copy.deepcopy(document)
    del parent_of(result, path)[path[-1]]
    return result


def mutants(document, chance):
    """Documents that differ from the given one in one place, and some that differ in two."""
    yield document
    for path in places(document):
        for value in STRANGE:
            yield changed(document, path, value)
        if path:
            yield without(document, path)
        at = document if not path else parent_of(document, path)[path[-1]]
        if isinstance(at, dict):
            yield changed(document, path, {**at, "unknown": {"a": [1, 2.0]}})
        if isinstance(at, list) and at:
            yield changed(document, path, at + [at[0]])
    for _ in range(150):
        twice = changed(document, chance.choice(list(places(document))), chance.choice(STRANGE))
        yield changed(twice, chance.choice(list(places(twice))), chance.choice(STRANGE))


def has_parameter(name, document):
    """Whether the library would never come back from reading the document."""
    try:
        return name == "MetaDataResponse" and any("param0_name" in event for event in document["body"]["eventlist"])
    except (KeyError, TypeError):
        return False


def is_integer(value):
    return isinstance(value, int) and not isinstance(value, bool)


def low32(value):
    return (value + 2**31) % 2**32 - 2**31


def with_low_ids(document):
    """The document with the low 32 bits of the event id that is compared."""
    for path in (("id",), ("body", "id")):
        try:
            value = parent_of(document, path)[path[-1]]
        except (KeyError, TypeError, IndexError):
            continue
        if is_integer(value) and -(2**63) <= value < 2**63:
            document = changed(document, path, low32(value))
    return document


def with_fractions(value):
    """The document with every whole floating-point number moved away from zero by a half."""
    if isinstance(value, float) and value.is_integer() and abs(value) < 2**50:
        return value - 0.5 if value < 0 else value + 0.5
    if isinstance(value, float) and value.is_integer():
        return 0.5 if value > 0 else -0.5
    if isinstance(value, list):
        return [with_fractions(item) for item in value]
    if isinstance(value, dict):
        return {key: with_fractions(item) for key, item in value.items()}
    return value


def as_doubles(value):
    """The document with its large integers as the doubles that a frequency becomes."""
    if is_integer(value) and abs(value) > 2**53:
        return float(value)
    if isinstance(value, list):
        return [as_doubles(item) for item in value]
    return {key: as_doubles(item) for key, item in value.items()} if isinstance(value, dict) else value


def registration_lists(document):
    def items(outer, inner):
        return (document.get(outer) or {}).get(inner) or []

    return items("eventlist", "ids"), items("filterlist", "type"), items("filterlist", "freq")


def reason_to_refuse(form, document):
    """Why the library may refuse what the accepted form allows, or None."""
    if not form.accepted.is_valid(with_fractions(document)):
        return "a fraction where an integer is read strictly"
    if form.name == "RegisterCommand":
        ids, types, freqs = registration_lists(document)
        if not len(ids) == len(types) == len(freqs):
            return "lists of different lengths"
        if any(is_integer(freq) for freq in freqs):
            return "an integer where a floating-point number is read strictly"
    return None


def reason_to_accept(form, document):
    """Why the library may accept what the accepted form refuses, or None."""
    return "low 32 bits" if form.accepted.is_valid(with_low_ids(document)) else None


class Schemas(unittest.TestCase):
    longMessage = True

    def test_there_is_one_for_every_class_that_the_library_writes(self):
        self.assertEqual(set(FORMS), {name for name, _ in written_messages()})

    def test_written_form_allows_what_the_library_writes(self):
        for name, document in written_messages():
            with self.subTest(name=name, document=document):
                self.assertEqual([error.message for error in FORMS[name].written.iter_errors(document)], [])

    def test_accepted_form_allows_what_the_library_writes_and_can_read(self):
        for name, document in written_messages():
            with self.subTest(name=name, document=document):
                self.assertEqual(FORMS[name].accepted.is_valid(document), not has_parameter(name, document))

    def test_both_forms_allow_the_golden_texts(self):
        for path in SCHEMA_FOLDER.glob("*.json"):
            form = FORMS[json.loads(path.read_text(encoding="utf-8"))["title"]]
            golden = json.loads((GOLDEN_TEXTS / path.name).read_text(encoding="utf-8"))
            with self.subTest(name=form.name):
                self.assertTrue(form.written.is_valid(golden))
                self.assertTrue(form.accepted.is_valid(golden))

    def test_written_form_alone_allows_the_golden_texts_that_cannot_be_read(self):
        paths = list((GOLDEN_TEXTS / "written_only").glob("*.json"))
        self.assertGreater(len(paths), 0)
        for path in paths:
            golden = json.loads(path.read_text(encoding="utf-8"))
            with self.subTest(name=path.stem):
                self.assertTrue(FORMS[path.stem].written.is_valid(golden))
                self.assertFalse(FORMS[path.stem].accepted.is_valid(golden))

    def test_verdicts_agree_but_for_the_listed_reasons(self):
        chance = random.Random(20260601)
        cases = {}
        for name, document in written_messages():
            for mutant in mutants(document, chance):
                if has_parameter(name, mutant):
                    self.assertFalse(FORMS[name].accepted.is_valid(mutant), (name, mutant))
                else:
                    cases[name + "\t" + json.dumps(mutant, ensure_ascii=False)] = (name, mutant)
        reasons = {}
        verdicts = {}
        for (name, document), answer in zip(cases.values(), peer("read", cases), strict=True):
            form = FORMS[name]
            allowed = form.accepted.is_valid(document)
            accepted = answer[0] == "written"
            verdicts[allowed, accepted] = verdicts.get((allowed, accepted), 0) + 1
            if allowed != accepted:
                reason = (reason_to_refuse if allowed else reason_to_accept)(form, document)
                reasons[reason] = reasons.get(reason, 0) + 1
                self.assertIsNotNone(reason, (name, json.dumps(document), answer))
            if accepted:
                self.check_rewritten(form, document, json.loads(answer[1]))
        print("allowed by the schema, accepted by the library:", verdicts, "reasons:", reasons, file=sys.stderr)
        self.assertGreater(verdicts[True, True], 2000)
        self.assertGreater(verdicts[False, False], 2000)
        self.assertEqual(set(reasons), {
            "low 32 bits", "lists of different lengths", "a fraction where an integer is read strictly",
            "an integer where a floating-point number is read strictly"})

    def check_rewritten(self, form, document, rewritten):
        """The written form allows what is written, and a document that it allows is written as it was."""
        if "unknown" not in json.dumps(document):
            self.assertEqual([error.message for error in form.written.iter_errors(rewritten)], [],
                             (form.name, document, rewritten))
        if form.name == "XmlAttrToEventMappingResponse" and form.written.is_valid(document):
            document = {"header": "", "body": {**document["body"], "id": -7}}  # neither is read
        if form.written.is_valid(document):
            self.assertEqual(as_doubles(rewritten), as_doubles(document), form.name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
