"""What the Mac's own files ask of the Mac is looked up in the Mac's own declarations, and a slip is found."""

import contextlib
import importlib.machinery
import importlib.util
import io
import json
import os
import pathlib
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("ORVANE_BUILD_DIR", PROJECT / "build" / "release"))
LOADER = importlib.machinery.SourceFileLoader("mac_declarations", str(PROJECT / "tools" / "mac-declarations"))
tool = importlib.util.module_from_spec(importlib.util.spec_from_loader("mac_declarations", LOADER))
LOADER.exec_module(tool)

DECLARED = """
declare class NSObject extends NativeObject implements NSObjectProtocol {
  isKindOfClass(aClass: interop.Object): boolean;
}

declare class NSWindow extends NSObject {
  static readonly shared: NSWindow;
  titleVisibility: interop.Enum<typeof NSWindowTitleVisibility>;
  readonly title: string;
  size: CGSize;
  trashItemAtURLResultingItemURLError(url: NSURL, out: (p1: A, p2: B) => void | null, error: interop.Pointer): boolean;
  static windowWithURL<This extends abstract new (...args: any) => any>(this: This, url: NSURL): InstanceType<This>;
}

declare const NSWindowTitleVisibility: {
  Visible: 0,
  Hidden: 1,
};

declare const NSUnderlyingErrorKey: string;

declare function renameatx_np(p1: number, p2: string, p3: number, p4: string, p5: number): number;
"""

ASKING = """
@interface NSURL (Slip)
- (BOOL)isFilURL;
@end
namespace orvane {
bool ask(NSURL* url) { return [url isFileURL] || [url isFilURL] || ::fsync(1) == 0; }
}
"""


class MacDeclarations(unittest.TestCase):
    def setUp(self):
        self.declarations = tool.Declarations([DECLARED])

    def is_declared(self, owner, name, arguments, kind):
        return self.declarations.answers(tool.Question(owner, name, arguments, kind))

    def test_what_is_declared_is_found(self):
        for question in [
            ("NSWindow", "+shared", 0, "object"),
            ("NSWindow", "-title", 0, "text"),
            ("NSWindow", "-titleVisibility", 0, "number"),
            ("NSWindow", "-size", 0, "structure"),
            ("NSWindow", "-setTitleVisibility:", 1, "void"),
            ("NSWindow", "-trashItemAtURL:resultingItemURL:error:", 3, "boolean"),
            ("NSWindow", "+windowWithURL:", 1, "object"),
            ("NSWindow", "-isKindOfClass:", 1, "boolean"),
            ("id", "-isKindOfClass:", 1, "boolean"),
            ("", "NSUnderlyingErrorKey", None, "constant"),
            ("", "NSWindowTitleHidden", None, "constant"),
            ("", "renameatx_np", 5, "number"),
        ]:
            with self.subTest(question=question):
                self.assertTrue(self.is_declared(*question))

    def test_anything_else_is_not(self):
        for question in [
            ("NSWindow", "-trashItemAtURL:resultingItemUrl:error:", 3, "boolean"),
            ("NSWindow", "-trashItemAtURL:resultingItemURL:", 2, "boolean"),
            ("NSWindow", "-trashItemAtURL:resultingItemURL:error:", 3, "void"),
            ("NSWindow", "-shared", 0, "object"),
            ("NSWindow", "-size", 0, "object"),
            ("NSWindow", "-setTitle:", 1, "void"),
            ("NSObject", "-title", 0, "text"),
            ("NSView", "-title", 0, "text"),
            ("", "NSWindowTitleShown", None, "constant"),
            ("", "renameatx_np", 4, "number"),
            ("", "renameat2", 5, "number"),
        ]:
            with self.subTest(question=question):
                self.assertFalse(self.is_declared(*question))

    def test_a_slip_that_compiles_is_found_in_the_code(self):
        with tempfile.TemporaryDirectory() as folder:
            source = pathlib.Path(folder) / "Asking.mm"
            source.write_text(ASKING)
            try:
                _, command = tool.unit_in(BUILD / "compile_commands.json")
            except SystemExit:
                self.skipTest("this build has nothing of the Mac's in it")
            found = tool.questions_in(
                source, [source], [word.replace("-Werror", "-Wno-everything") for word in command]
            )
            self.assertEqual(
                {(str(each), each.arguments, each.kind) for each in found},
                {("-[NSURL isFileURL]", 0, "boolean"), ("-[NSURL isFilURL]", 0, "boolean"), ("fsync", 1, "number")},
            )
            table = pathlib.Path(folder) / "table.json"
            known = [row for row in tool.rows(found) if "isFilURL" not in row["name"]]
            table.write_text(json.dumps({"source": tool.SOURCE, "declarations": known}))
            said = io.StringIO()
            with contextlib.redirect_stderr(said):
                self.assertEqual(tool.check(found, table), 1)
            self.assertIn("-[NSURL isFilURL]", said.getvalue())
            correct = {each for each in found if "isFilURL" not in str(each)}
            self.assertEqual(tool.check(correct, table), 0)

    def test_another_package_is_refused(self):
        with tempfile.NamedTemporaryFile() as package:
            with self.assertRaises(SystemExit):
                tool.declarations_in(pathlib.Path(package.name))


if __name__ == "__main__":
    unittest.main()
