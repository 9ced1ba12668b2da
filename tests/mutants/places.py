"""Finds the possible mutants of a C++ file, and renders the file with all of them, each selected by its number."""

import dataclasses
import pathlib

import clang.cindex
from clang.cindex import Cursor, CursorKind

clang.cindex.Config.set_library_file("libclang-19.so.1")

OPPOSITES = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&"}
ASSIGNMENTS = {"=", "+=", "-=", "|=", "&=", "++", "--"}
FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.LAMBDA_EXPR, CursorKind.FUNCTION_TEMPLATE,
             CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR}
# Constant expressions cannot depend on a run-time choice.
CONSTANT = {CursorKind.STATIC_ASSERT, CursorKind.CASE_STMT, CursorKind.ENUM_DECL, CursorKind.TEMPLATE_TYPE_PARAMETER,
            CursorKind.TYPE_REF, CursorKind.PARM_DECL}


@dataclasses.dataclass(unsafe_hash=True)
class Mutant:
    """A replacement of a file's bytes from begin to end."""

    kind: str
    begin: int
    end: int
    line: int
    changed: str
    isNegation: bool = False
    number: int = -1

    # The source with the mutant behind its number; `kept`, the original text, may contain other mutants.
    def text(self, kept: str) -> str:
        alive = f"::quillon::mutants::isAlive({self.number})"
        if self.kind == "left out":
            return f"if (!{alive}) {kept}"
        if self.kind == "early return":
            return f"if ({alive}) {self.changed} {kept}"
        if self.kind == "condition":
            return f"({alive} ? {self.changed} : static_cast<bool>({kept}))"
        return f"({alive} ? ({self.changed}) : ({kept}))"


class Finder:
    """The mutants of one file."""

    def __init__(self, file: pathlib.Path, arguments: list[str]) -> None:
        self.file = str(file)
        self.source = file.read_bytes()
        self.arguments = arguments
        self.found: list[Mutant] = []

    def parse(self, source: bytes) -> clang.cindex.TranslationUnit:
        return clang.cindex.Index.create().parse(
            self.file, self.arguments, unsaved_files=[(self.file, source.decode())])

    def mutants(self) -> list[Mutant]:
        self.walk(self.parse(self.source).cursor, None)
        conditions = {(mutant.begin, mutant.end) for mutant in self.found if mutant.kind == "condition"}
        same = lambda mutant: mutant.isNegation and (mutant.begin, mutant.end) in conditions
        return list(dict.fromkeys(mutant for mutant in self.found if not same(mutant)))

    def add(self, kind: str, begin: int, end: int, changed: str, isNegation: bool = False) -> None:
        line = self.source.count(b"\n", 0, begin) + 1
        self.found.append(Mutant(kind, begin, end, line, changed, isNegation))

    def change(self, kind: str, cursor: Cursor, changed: str, isNegation: bool = False) -> None:
        self.add(kind, cursor.extent.start.offset, cursor.extent.end.offset, changed, isNegation)

    def textOf(self, cursor: Cursor) -> str:
        return self.source[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    # Visits a node and its children; `function` is the enclosing function, if any.
    def walk(self, cursor: Cursor, function: Cursor | None) -> None:
        if cursor.location.file and cursor.location.file.name != self.file and cursor.kind != CursorKind.TRANSLATION_UNIT:
            return
        if cursor.kind in CONSTANT or self.isConstant(cursor):
            return
        if cursor.kind in FUNCTIONS:
            function = cursor
            self.findEarlyReturn(cursor)
        if function is not None:
            self.findIn(cursor)
        for child in cursor.get_children():
            self.walk(child, function)

    def isConstant(self, cursor: Cursor) -> bool:
        if cursor.kind not in FUNCTIONS | {CursorKind.VAR_DECL}:
            return False
        return any(token.spelling in {"constexpr", "consteval"} for token in self.headOf(cursor))

    # The tokens before a function's body or a variable's initialiser.
    def headOf(self, cursor: Cursor) -> list:
        head = []
        for token in cursor.get_tokens():
            if token.spelling in {"{", "=", "("}:
                break
            head.append(token)
        return head

    def findIn(self, cursor: Cursor) -> None:
        kind = cursor.kind
        if kind in {CursorKind.BINARY_OPERATOR, CursorKind.CALL_EXPR}:
            self.findOperator(cursor)
        if kind in {CursorKind.IF_STMT, CursorKind.CONDITIONAL_OPERATOR, CursorKind.WHILE_STMT}:
            self.findCondition(cursor)
        if kind == CursorKind.INTEGER_LITERAL and self.textOf(cursor).isdigit():
            self.change("constant", cursor, str(int(self.textOf(cursor)) + 1))
        if kind == CursorKind.CXX_BOOL_LITERAL_EXPR and self.textOf(cursor) in {"true", "false"}:
            self.change("constant", cursor, "false" if self.textOf(cursor) == "true" else "true")
        if kind == CursorKind.COMPOUND_STMT:
            for statement in cursor.get_children():
                self.findStatement(statement)
        if kind == CursorKind.IF_STMT:
            for statement in list(cursor.get_children())[1:]:
                self.findStatement(statement)

    # Built-in or overloaded binary operators.
    def findOperator(self, cursor: Cursor) -> None:
        children = list(cursor.get_children())
        if len(children) < 2:
            return
        left, right = children[0], children[-1]
        if cursor.kind == CursorKind.CALL_EXPR and not cursor.spelling.startswith("operator"):
            return
        begin, end = left.extent.end.offset, right.extent.start.offset
        between = self.source[begin:end].decode().strip()
        if between in OPPOSITES and left.extent.start.offset == cursor.extent.start.offset:
            changed = f"{self.textOf(left)} {OPPOSITES[between]} {self.textOf(right)}"
            self.change("operator", cursor, changed, between in {"==", "!="})

    def findCondition(self, cursor: Cursor) -> None:
        tokens = [token.spelling for _, token in zip(range(2), cursor.get_tokens())]
        children = list(cursor.get_children())
        condition = children[0]
        declares = {CursorKind.DECL_STMT, CursorKind.VAR_DECL}
        if "constexpr" in tokens or any(child.kind in declares for child in children[:2]):
            return
        self.change("condition", condition, f"!({self.textOf(condition)})")

    # Deletes a statement: a call, an assignment, an await.
    def findStatement(self, cursor: Cursor) -> None:
        end = cursor.extent.end.offset
        if not cursor.kind.is_expression() or self.source[end:end + 1] != b";":
            return
        tokens = [token.spelling for token in cursor.get_tokens()]
        if tokens[:1] == ["log"]:  # changes of logging are not tested
            return
        if "(" in tokens or ASSIGNMENTS & set(tokens):
            self.change("left out", cursor, "")

    def findEarlyReturn(self, cursor: Cursor) -> None:
        bodies = [child for child in cursor.get_children() if child.kind == CursorKind.COMPOUND_STMT]
        if not bodies or cursor.kind in {CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR}:
            return
        body = bodies[-1]
        if any(token.spelling in {"co_await", "co_return", "co_yield"} for token in body.get_tokens()):
            return
        statements = list(body.get_children())
        results = {"void": ["return;"], "bool": ["return true;", "return false;"]}
        kind = cursor.result_type.spelling
        if len(statements) < (2 if kind == "void" else 1):
            return
        if kind.startswith("std::optional"):
            results[kind] = ["return {};"]
        for result in results.get(kind, []):
            begin = statements[0].extent.start.offset
            self.add("early return", begin, begin, result)

    # The file with these mutants. A nested one is inside the other's kept original.
    def render(self, mutants: list[Mutant]) -> bytes:
        ordered = sorted(mutants, key=lambda mutant: (mutant.begin, -mutant.end, mutant.kind != "left out"))

        def text(begin: int, end: int, inside: list[Mutant]) -> str:
            out, at = "", begin
            while inside:
                first = inside.pop(0)
                nested = []
                while inside and inside[0].begin < first.end:
                    nested.append(inside.pop(0))
                out += self.source[at:first.begin].decode() + first.text(text(first.begin, first.end, nested))
                at = first.end
            return out + self.source[at:end].decode()

        header = pathlib.Path(__file__).parent / "Mutant.h"
        begin = f'#include "{header}"\n#line 1 "{self.file}"\n'
        return (begin + text(0, len(self.source), ordered)).encode()

    # The largest subset that compiles together in one file.
    def compiling(self, mutants: list[Mutant]) -> list[Mutant]:
        kept = list(mutants)
        while kept:
            unit = self.parse(self.render(kept))
            wrong = {diagnostic.location.line for diagnostic in unit.diagnostics
                     if diagnostic.severity >= clang.cindex.Diagnostic.Error}
            if not wrong:
                return kept
            lines = lambda mutant: range(mutant.line, mutant.line + self.source.count(b"\n", mutant.begin, mutant.end) + 1)
            left = [mutant for mutant in kept if not wrong & set(lines(mutant))]
            kept = left if len(left) < len(kept) else []
        return kept
