"""The schema of what the host reports as JSON, as the manual gives it, and a check of reports against it.

The words of JSON Schema that the manual uses are checked, and others are refused, so that none is passed over.
"""
import json
import re
from pathlib import Path

PAGE = Path(__file__).resolve().parents[2] / "docs/host.md"
TYPES = {"object": dict, "array": list, "string": str, "boolean": bool, "integer": int, "number": (int, float)}
KNOWN = {"type", "properties", "required", "items", "enum", "pattern", "minimum", "oneOf"}


def load():
    """The schemas by the name of the command."""
    block = re.search(r"<!-- schema -->\n```json\n(.*?)^```", PAGE.read_text(encoding="utf-8"), re.DOTALL | re.MULTILINE)
    return json.loads(block[1])


def is_of_type(value, name):
    # In Python a truth value is an integer as well.
    return isinstance(value, TYPES[name]) and (name == "boolean" or not isinstance(value, bool))


def problems(value, schema, place="report"):
    """What is wrong with a value, one text each. Members that the schema does not name are wrong."""
    if not KNOWN >= schema.keys():
        raise ValueError(f"the schema has unknown words: {schema.keys() - KNOWN}")
    if "oneOf" in schema:
        found = [problems(value, choice, place) for choice in schema["oneOf"]]
        return [] if sum(not texts for texts in found) == 1 else [f"{place} fits not exactly one form: {found}"]
    if not is_of_type(value, schema["type"]):
        return [f"{place} is not of type {schema['type']}: {value!r}"]
    texts = []
    if "enum" in schema and value not in schema["enum"]:
        texts.append(f"{place} is not in {schema['enum']}: {value!r}")
    if "pattern" in schema and not re.search(schema["pattern"], value):
        texts.append(f"{place} does not match {schema['pattern']}: {value!r}")
    if "minimum" in schema and value < schema["minimum"]:
        texts.append(f"{place} is below {schema['minimum']}: {value!r}")
    if schema["type"] == "object":
        properties = schema["properties"]
        texts += [f"{place}.{name} is missing" for name in schema.get("required", properties) if name not in value]
        texts += [f"{place}.{name} is not in the schema" for name in value if name not in properties]
        for name in value.keys() & properties.keys():
            texts += problems(value[name], properties[name], f"{place}.{name}")
    if schema["type"] == "array":
        for index, item in enumerate(value):
            texts += problems(item, schema["items"], f"{place}[{index}]")
    return texts
