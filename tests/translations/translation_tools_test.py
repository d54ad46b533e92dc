"""Tests of scripts/translations: what the extractor finds, and that the check notices each kind of fault."""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts" / "translations"))
from catalogue import CatalogueError, Entry, read, write_entry
from check import directives, problems_of_project
from extract import catalogue_text
from source_texts import SourceError, texts_of_source

SOURCE = """
strings.localizedString("Close", "Alert");
strings.localizedString("%i of %i", "Window");
strings.localizedString("&Add...", "Tab");
// Translators: a name. Do not translate.
strings.localizedString("Tessaly", "Name");
"""
HEADER = (
    'msgid ""\nmsgstr ""\n"Project-Id-Version: x\\n"\n"PO-Revision-Date: 2026-11-21 12:00+0000\\n"\n'
    '"Last-Translator: A <a@example.com>\\n"\n"Language-Team: German\\n"\n"Language: de\\n"\n'
    '"MIME-Version: 1.0\\n"\n"Content-Type: text/plain; charset=UTF-8\\n"\n"Content-Transfer-Encoding: 8bit\\n"\n'
)
TRANSLATION = {"Close": "Schließen", "%i of %i": "%i von %i", "&Add...": "&Mehr...", "Tessaly": "Tessaly"}


class ExtractorTest(unittest.TestCase):
    def test_finds_texts_and_comments(self):
        cases = {
            'localizedString("Close", "Alert")': [("Close", ["Alert"])],
            'with_.strings.localizedString(\n    "A "\n    "B", "C"\n    " D")': [("A B", ["C D"])],
            r'localizedString("one\n\n\"two\" \\", "x")': [('one\n\n"two" \\', ["x"])],
            'localizedString(R"(a "b" \\n)", "x")': [('a "b" \\n', ["x"])],
            'localizedString("A", /* why */ "x")': [("A", ["x"])],
            '// localizedString("A", "x")': [],
            '/* localizedString("A", "x") */': [],
            '"localizedString(\\"A\\", x)"': [],
            "const char c = '\"'; localizedString(\"A\", \"x\")": [("A", ["x"])],
            "int n = 1'000; localizedString(\"A\", \"x\"); int m = 2'0;": [("A", ["x"])],
            'std::string localizedString(std::string_view key, std::string_view comment) const = 0;': [],
            '// Translators: short,\n// please.\nf(localizedString("A", "x"));': [("A", ["x", "short, please."])],
            '// Translators: not for A.\ng(); localizedString("A", "x");': [("A", ["x"])],
            '// A usual remark.\nlocalizedString("A", "x");': [("A", ["x"])],
            'f(localizedString("Ä", "x"), localizedString("B", "y"))': [("Ä", ["x"]), ("B", ["y"])],
        }
        for source, expected in cases.items():
            with self.subTest(source):
                self.assertEqual(texts_of_source(source, "a.cpp"), expected)

    def test_refuses_what_it_would_miss(self):
        for arguments in ['key, "x"', '"A", comment', '"A"', '""', '"", "x"', '"A", ""', '"A" + b, "x"', '"A", "x" + y']:
            with self.subTest(arguments), self.assertRaisesRegex(SourceError, "^a.cpp:2: "):
                texts_of_source(f"int a;\nlocalizedString({arguments});", "a.cpp")


class CatalogueTest(unittest.TestCase):
    def test_reads_what_it_writes(self):
        entry = Entry('a\n"b"\n', "c\\d\te", ["x", "y"], ["src/a.cpp"], ["objc-format"])
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "a.po"
            path.write_text(write_entry(entry), encoding="utf-8")
            entry.files = []  # which nobody needs to read
            self.assertEqual(read(path), [entry])

    def test_says_where_it_does_not_understand(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "a.po"
            path.write_text('msgid "a"\nmsgid_plural "b"\n', encoding="utf-8")
            with self.assertRaisesRegex(CatalogueError, "a.po:2: "):
                read(path)

    def test_knows_directives(self):
        cases = {
            "plain": ([], True),
            "%@ and %i": ([(1, "@"), (2, "i")], True),
            "%2$i before %1$@": ([(1, "@"), (2, "i")], True),
            "%.2f%% done": ([(1, ".2f")], True),
            "50 % done": ([], False),
            "%d": ([], False),
        }
        for text, expected in cases.items():
            with self.subTest(text):
                self.assertEqual(directives(text), expected)


class CheckTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        (self.root / "src").mkdir()
        (self.root / "po").mkdir()
        (self.root / "src" / "a.cpp").write_text(SOURCE, encoding="utf-8")
        (self.root / "po" / "corvane.pot").write_text(catalogue_text(self.root), encoding="utf-8")
        (self.root / "po" / "LINGUAS").write_text("de\n", encoding="utf-8")

    def translate(self, changes=None, more=""):
        """Writes a whole translation but for the changes (None: left out), with more text at its end."""
        texts = TRANSLATION | (changes or {})
        entries = [
            write_entry(Entry(key, text, flags=["objc-format"] if "%" in key else []))
            for key, text in texts.items()
            if text is not None
        ]
        (self.root / "po" / "de.po").write_text(HEADER + "\n" + "\n".join(entries) + more, encoding="utf-8")

    def problems(self):
        return "\n".join(problems_of_project(self.root))

    def test_a_whole_translation_is_well(self):
        self.translate({"%i of %i": "von %2$i: %1$i"})
        self.assertEqual(self.problems(), "")

    def test_notices_each_fault(self):
        cases = [
            ({"Close": None}, "", "missing: 'Close'"),
            ({"Close": ""}, "", "not translated: 'Close'"),
            ({"Gone": "Weg"}, "", "stale: 'Gone'"),
            ({}, '\n#~ msgid "Gone"\n#~ msgstr "Weg"\n', "stale: 'Gone'"),
            ({"Close": None}, '\n#, fuzzy\nmsgid "Close"\nmsgstr "Zu"\n', "marked fuzzy: 'Close'"),
            ({"%i of %i": "%i"}, "", "other arguments than the English text: '%i of %i'"),
            ({"%i of %i": "%i von %@"}, "", "other arguments"),
            ({"%i of %i": "%i von %i, 100 % davon"}, "", "other arguments"),
            ({"%i of %i": "%1$i von %1$i"}, "", "other arguments"),
            ({"&Add...": "Mehr..."}, "", "mnemonic"),
            ({"&Add...": "&Me&hr..."}, "", "mnemonic"),
            ({"&Add...": "&Mehr"}, "", "..."),
            ({"Tessaly": "Thessalien"}, "", "must stay as it is: 'Tessaly'"),
            ({}, '\nmsgid "Close"\nmsgstr "Zu"\n', "duplicate"),
            ({}, "\nnonsense\n", "not understood"),
        ]
        for changes, more, expected in cases:
            with self.subTest(expected, changes=changes, more=more):
                self.translate(changes, more)
                self.assertIn(expected, self.problems())

    def test_notices_a_stale_catalogue(self):
        self.translate()
        with (self.root / "src" / "a.cpp").open("a", encoding="utf-8") as source:
            source.write('strings.localizedString("New", "Window");\n')
        self.assertIn("corvane.pot: not up to date", self.problems())

    def test_notices_a_changed_comment(self):
        self.translate()
        (self.root / "src" / "a.cpp").write_text(SOURCE.replace('"Alert"', '"Other place"'), encoding="utf-8")
        self.assertIn("corvane.pot: not up to date", self.problems())

    def test_notices_a_call_that_cannot_be_extracted(self):
        self.translate()
        (self.root / "src" / "a.cpp").write_text("strings.localizedString(key, comment);", encoding="utf-8")
        self.assertIn("src/a.cpp:1: ", self.problems())

    def test_notices_a_translation_that_is_not_built(self):
        self.translate()
        (self.root / "po" / "fr.po").write_text(HEADER, encoding="utf-8")
        self.assertIn("fr.po: not in LINGUAS", self.problems())

    def test_notices_a_language_without_translation(self):
        self.assertIn("de.po", self.problems())


if __name__ == "__main__":
    unittest.main()
