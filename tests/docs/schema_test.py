"""Every document that orvane-cli writes is what docs/schema.json says, and no member is left undocumented."""

import copy
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import jsonschema

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")).resolve() / "orvane-cli"
SCHEMA = json.loads((REPOSITORY / "docs" / "schema.json").read_text(encoding="utf-8"))


def strict(schema: object) -> object:
    """The schema without room for members that it does not name."""
    if isinstance(schema, list):
        return [strict(each) for each in schema]
    if not isinstance(schema, dict):
        return schema
    result = {key: strict(value) for key, value in schema.items()}
    if result.get("type") == "object":
        result["additionalProperties"] = False
    return result


class SchemaTest(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="orvane-schema-"))
        self.addCleanup(shutil.rmtree, self.scratch)
        self.volume = self.scratch / "volume"
        tool = REPOSITORY / "tools" / "make-sample-volume"
        subprocess.run([sys.executable, "-B", tool, self.volume], check=True, capture_output=True)

    def document(self, name: str, *arguments: str, status: int = 0, root: bool = True) -> object:
        """What a command writes, which is one line that fits that part of the schema, and nothing besides."""
        place = ["--root", self.volume] if root else []
        done = subprocess.run([PROGRAM, *place, *arguments], capture_output=True, check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        if status == 0:
            self.assertEqual(done.stderr, b"", "it is quiet where there is no terminal")
        self.assertEqual(done.stdout.count(b"\n"), 1)
        document = json.loads(done.stdout)
        whole = {"$ref": f"#/$defs/{name}", "$defs": strict(SCHEMA["$defs"])}
        jsonschema.Draft202012Validator(whole).validate(document)
        jsonschema.Draft202012Validator(SCHEMA).validate(document)
        return document

    def test_the_schema_is_one(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_the_strict_schema_refuses_what_is_not_in_it(self):
        document = self.document("list", "list", "--json")
        validator = jsonschema.Draft202012Validator(
            {"$ref": "#/$defs/list", "$defs": strict(SCHEMA["$defs"])}
        )
        for change in ({"colour": "red"}, {"size": "1"}, {"size": -1}, {"isInstalled": None}):
            wrong = copy.deepcopy(document)
            wrong[0].update(change)
            self.assertFalse(validator.is_valid(wrong), change)

    def test_lists_plans_and_dry_runs(self):
        applications = self.document("list", "list", "--json")
        self.assertEqual(len(applications), 39)
        self.document("list", "list", "--rescan", "--json")
        self.assertEqual(self.document("list", "list", "--search", "no such application", "--json"), [])
        for application in applications:
            self.document("plan", "plan", application["id"], "--json")
            plan = self.document("plan", "plan", application["id"], "--why", "--json")
            self.assertTrue(all("why" in item for item in plan["items"]))
            if not application["isSystemApplication"]:
                self.document("dryRun", "remove", application["id"], "--dry-run", "--json")

    def test_running_services(self):
        running = subprocess.Popen([self.volume / "Applications/Amberfold.app/Contents/MacOS/Amberfold"])
        try:
            plan = self.document("plan", "plan", "Amberfold", "--json")
        finally:
            running.kill()
            running.wait()
        self.assertEqual([service["processIdentifier"] for service in plan["runningServices"]], [running.pid])

    def test_removals(self):
        done = self.document("removal", "remove", "Fernglass", "--yes", "--json")
        self.assertEqual((len(done["removed"]), len(done["failed"])), (3, 0))
        trash = self.volume / "Users/sample/.Trash"
        shutil.rmtree(trash)
        trash.touch()
        failed = self.document("removal", "remove", "Brindlemark", "--yes", "--json", status=1)
        self.assertEqual(failed["removed"], [])
        self.assertGreater(len(failed["failed"]), 0)

    def test_names_that_are_no_text(self):
        library = self.volume / "Users/sample/Library/Caches"
        os.makedirs(os.fsencode(library) + b"/\xff.Amberfold")
        os.makedirs(os.fsencode(self.volume) + b"/Applications/\xff\xfe.app")
        self.document("list", "list", "--rescan", "--json")
        self.document("plan", "plan", "Amberfold", "--json")

    def test_disks(self):
        self.document("disks", "disks", "--json", root=False)
        if os.geteuid() != 0:
            self.skipTest("nothing can be mounted here")
        script = 'mount --bind "$0" "$0"; exec "$1" disks --json'
        done = subprocess.run(
            ["unshare", "--mount", "--propagation", "private", "sh", "-ec", script, self.volume, PROGRAM],
            capture_output=True,
            check=True,
        )
        found = json.loads(done.stdout)
        jsonschema.Draft202012Validator({"$ref": "#/$defs/disks", "$defs": strict(SCHEMA["$defs"])}).validate(found)
        self.assertIn(str(self.volume), [disk["root"] for disk in found["disks"]])


if __name__ == "__main__":
    unittest.main()
