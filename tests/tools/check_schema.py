#!/usr/bin/env python3
"""Holds the schema of configurations to the SDK that decodes them, by documents that are changed in one place each.

usage: check_schema.py QUILLON_CONSENT SCRATCH
"""
import copy
import json
import os
import random
import subprocess
import sys

from jsonschema import Draft202012Validator

DOCUMENTS = 1000


def whole(schema, root):
    return root["$defs"][schema["$ref"].rsplit("/", 1)[1]] if "$ref" in schema else schema


def example(schema, root):
    """A value with every key that the schema names."""
    schema = whole(schema, root)
    if "anyOf" in schema:
        return example(schema["anyOf"][0], root)
    if "enum" in schema:
        return schema["enum"][0]
    kind = schema.get("type")
    kind = kind[0] if isinstance(kind, list) else kind
    if kind == "object":
        members = {key: example(part, root) for key, part in schema.get("properties", {}).items()}
        if "additionalProperties" in schema:
            members.update({key: example(schema["additionalProperties"], root) for key in ("en", "de")})
        return members
    return {"array": lambda: [example(schema["items"], root)] * 2, "integer": lambda: 7, "boolean": lambda: True}.get(
        kind, lambda: "text")()


def places(value):
    """Every container and key of a member or element."""
    entries = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, child in list(entries):
        yield value, key
        yield from places(child)


VALUES = [None, True, 0, -1, 2**63 - 1, -(2**63), 2**63, 1.0, 1.5, 1e300, "", "text", "granted", "opt-in", "Opt-in", [],
          {}, [None], {"en": None}, {"en": "text"}, {"en": {}}, [1], ["text"], [{}]]


def mutated(document, chance):
    container, key = chance.choice(list(places(document)))
    action = chance.randrange(8)
    if action == 0:
        del container[key]
    elif action == 1 and isinstance(container, dict):
        container["unheard-of"] = chance.choice(VALUES)
    elif action == 2 and isinstance(container, dict):
        container[key.upper()] = container.pop(key)
    else:
        container[key] = copy.deepcopy(chance.choice(VALUES))
    return document


def main():
    tool, scratch = sys.argv[1:]
    schema = json.loads(subprocess.check_output([tool, "schema"]))
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    full = example(schema, schema)
    assert len(list(places(full))) > 150, "the example is poor"

    chance = random.Random(20)
    documents = [full] + [mutated(copy.deepcopy(full), chance) for _ in range(DOCUMENTS)]
    os.makedirs(scratch, exist_ok=True)
    names = []
    for number, document in enumerate(documents):
        names.append(os.path.join(scratch, f"{number}.json"))
        with open(names[-1], "w", encoding="utf-8") as file:
            json.dump(document, file)
    printed = subprocess.run([tool, "validate", "--format", "json", *names], stdout=subprocess.PIPE, check=False).stdout
    files = json.loads(printed)["files"]
    assert len(files) == len(documents)

    refused = 0
    wrong = []
    for document, checked in zip(documents, files):
        takes = validator.is_valid(document)
        errors = [f for f in checked["findings"] if f["level"] == "error"]
        refused += not checked["valid"]
        # The decoder's own words stand in where the check of the form overlooks something.
        if takes != checked["valid"] or bool(errors) == checked["valid"] or any(f["rule"] == "document" for f in errors):
            wrong.append(f"{checked['file']}: the schema {'takes' if takes else 'refuses'} it; {errors}")
    print(f"{len(documents)} documents, {refused} refused")
    print("\n".join(wrong))
    assert files[0]["valid"], files[0]
    assert DOCUMENTS / 4 < refused < DOCUMENTS * 3 / 4, "the documents are all alike"
    sys.exit(1 if wrong else 0)


main()
