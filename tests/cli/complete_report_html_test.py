"""The page of a report as a file: its form, and what it may load and run."""

import base64
import hashlib
import html.parser
import re
import unittest
import xml.etree.ElementTree as xml

import report_pages


def parts(page, name):
    """What stands in the elements of that name, as a browser ends them."""
    return re.findall(f"<{name}>(.*?)</{name}", page, re.S)


class Form(report_pages.Pages):
    def tree(self, page):
        # XML is stricter than HTML: each quote, bracket and control that is not the program's own would end it here.
        for name in ("style", "script"):
            [own] = parts(page, name)
            page = page.replace(own, "")
        return xml.fromstring(page.removeprefix("<!DOCTYPE html>"))

    def test_it_is_well_formed_whatever_the_texts_are(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                tree = self.tree(page)
                self.assertEqual([child.tag for child in tree], ["head", "body"])
                self.assertEqual(tree.get("lang"), "en")

    def test_all_that_opens_is_closed_for_a_reader_of_html_too(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                open_ones = []

                class Reader(html.parser.HTMLParser):
                    def handle_starttag(self, tag, attributes):
                        open_ones.append(tag)

                    def handle_startendtag(self, tag, attributes):
                        pass

                    def handle_endtag(self, tag):
                        assert open_ones.pop() == tag, (tag, self.getpos())

                Reader().feed(page)
                self.assertEqual(open_ones, [])

    def test_nothing_but_its_own_style_and_script_may_load_or_run(self):
        def hash_of(text):
            return "sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()

        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                [style], [script] = parts(page, "style"), parts(page, "script")
                [policy] = [meta.get("content") for meta in self.tree(page).iter("meta")
                            if meta.get("http-equiv") == "Content-Security-Policy"]
                self.assertEqual(policy, f"default-src 'none'; style-src '{hash_of(style)}'; "
                                         f"script-src '{hash_of(script)}'; base-uri 'none'; form-action 'none'")
                self.assertLess(page.index("Content-Security-Policy"), page.index("<style>"))

    def test_it_names_no_place_outside_itself(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                for element in self.tree(page).iter():
                    for name, value in element.attrib.items():
                        self.assertFalse(name.startswith("on") or name in ("src", "style", "srcset", "action"), name)
                        if name == "href":
                            self.assertRegex(value, "^#[a-z]+$")
                    self.assertNotIn(element.tag, ("link", "img", "iframe", "object", "embed", "form", "base"))
                for own in parts(page, "style") + parts(page, "script"):
                    self.assertNotRegex(own, r"//[a-z]|@import|url\((?!#)|innerHTML|fetch|eval")

    def test_its_links_and_references_lead_to_parts_of_it(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                elements = list(self.tree(page).iter())
                names = [element.get("id") for element in elements if element.get("id")]
                self.assertEqual(len(names), len(set(names)))
                for element in elements:
                    if element.tag == "a":
                        self.assertIn(element.get("href")[1:], names)

    def test_hostile_texts_stand_there_as_they_are(self):
        page = self.pages["hostile"]
        tree = self.tree(page)
        self.assertEqual(len(list(tree.iter("script"))), 1)
        text = "".join(tree.itertext())
        for told in ("</bdi></th></script><script>document.title='taken'</script>", "<img src=x onerror=\"",
                     "'\"&amp;<!-- ]]>"):
            self.assertGreaterEqual(text.count(told), 6, told)
        self.assertIn("\N{REPLACEMENT CHARACTER}x\N{REPLACEMENT CHARACTER}", text)

    def test_nothing_turns_the_direction_or_is_a_control(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                self.assertIsNone(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069"
                                            "\ufeff\ufffe\uffff]", page))

    def test_who_hears_it_is_told_what_each_cell_and_field_is(self):
        for kind, page in self.pages.items():
            with self.subTest(page=kind):
                tree = self.tree(page)
                for table in tree.iter("table"):
                    columns = table.findall("thead/tr/th")
                    self.assertTrue(columns and all(column.get("scope") == "col" for column in columns))
                    for row in table.iterfind("tbody/tr"):
                        self.assertEqual(len(row), len(columns))
                labelled = {field for label in tree.iter("label") for field in label}
                for field in [*tree.iter("input"), *tree.iter("select")]:
                    self.assertIn(field, labelled)
                for picture in tree.iter():
                    if picture.get("role") == "img":
                        self.assertTrue(picture.get("aria-label"))
                levels = [int(element.tag[1]) for element in tree.iter() if re.fullmatch("h[1-6]", element.tag)]
                self.assertEqual(levels[0], 1)
                self.assertTrue(all(after <= before + 1 for before, after in zip(levels, levels[1:])))


if __name__ == "__main__":
    unittest.main()
