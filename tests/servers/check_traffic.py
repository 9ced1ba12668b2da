#!/usr/bin/env python3
"""Holds exchanges of real servers to the OpenAPI document.

usage: check_traffic.py DOCUMENT TRAFFIC

TRAFFIC is a file (or - for standard input) of JSON lines as `quillon-consent check-server --traffic` writes them.
"""
import json
import re
import sys
import warnings
from urllib.parse import urlsplit

warnings.simplefilter("ignore", DeprecationWarning)  # later versions have another resolver beside this one
from jsonschema import Draft202012Validator, RefResolver

MAX_SMALL_ANSWER = 64 << 10


def operation_of(document, exchange):
    path = urlsplit(exchange["url"]).path
    for template, item in document["paths"].items():
        names = [p for p in item.get("get", item.get("post"))["parameters"] if p.get("in") == "path"]
        pattern = re.sub(r"\{(\w+)\}", r"(?P<\1>[^/]+)", re.sub(r"([.])", r"\\\1", template))
        found = re.fullmatch(pattern, path)
        if found and all(re.search(n["schema"].get("pattern", ""), found[n["name"]]) for n in names):
            return item.get(exchange["method"].lower()), template
    return None, path


def problems_of(document, exchange):
    resolver = RefResolver("", document)

    def whole(node):
        return resolver.resolve(node["$ref"])[1] if "$ref" in node else node

    def invalid(schema, value):
        errors = Draft202012Validator(schema, resolver=resolver).iter_errors(value)
        return [f"{'/'.join(map(str, e.path))}: {e.message[:200]}" for e in errors]

    operation, path = operation_of(document, exchange)
    if operation is None:
        # What is not in the document is asked for on purpose, and must be refused.
        return [] if exchange["status"] in (404, 405) else [f"{exchange['method']} {path} is not in the document"]
    status = str(exchange["status"])
    if status not in operation["responses"]:
        return [f"status {status} is not in the document"]
    response = whole(operation["responses"][status])
    headers = {name.lower(): value for name, value in exchange["headers"].items()}
    problems = []
    for name, header in response.get("headers", {}).items():
        if name.lower() not in headers:
            problems += [f"header {name} is missing"] if header.get("required") else []
        else:
            problems += invalid(header["schema"], headers[name.lower()])
    problems += [f"header {n} is there" for n in response.get("x-forbidden-headers", []) if n.lower() in headers]
    body = exchange["body"]
    if "content" in response:
        # A device does not look at it, and the test kit gives none.
        if not headers.get("content-type", "application/json").startswith("application/json"):
            problems.append(f"content type {headers['content-type']}")
        try:
            problems += invalid(response["content"]["application/json"]["schema"], json.loads(body))
        except ValueError:
            problems.append(f"body is not JSON: {body[:80]}")
    if status == "304" and body:
        problems.append("304 with a body")
    if "configuration" != operation["operationId"] and len(body.encode()) > MAX_SMALL_ANSWER:
        problems.append("body is too large")
    # What was accepted was an upload as the document describes it; what was refused may be anything.
    if operation["operationId"] == "upload" and status == "200" and json.loads(body)["status"] == 0:
        sent = {name.lower() for name in exchange["request_headers"]}
        problems += [] if "x-auth-token" in sent else ["accepted without X-Auth-Token"]
        schema = operation["requestBody"]["content"]["application/json"]["schema"]
        problems += invalid(schema, json.loads(exchange["request_body"]))
    return problems


def main():
    document = json.load(open(sys.argv[1]))
    assert document["openapi"].startswith("3.1.")
    lines = sys.stdin if sys.argv[2] == "-" else open(sys.argv[2])
    count, failures, operations = 0, 0, set()
    for line in lines:
        exchange = json.loads(line)
        count += 1
        operation, _ = operation_of(document, exchange)
        operations.add(operation["operationId"] if operation else "other")
        for problem in problems_of(document, exchange):
            failures += 1
            print(f"{exchange['method']} {exchange['url']} {exchange['status']}: {problem}")
    complete = {"configuration", "location", "upload"} <= operations
    if not complete:
        failures += 1
        print(f"only seen: {sorted(operations)}")
    print(f"{count} exchanges, {failures} failures")
    return 0 if failures == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
