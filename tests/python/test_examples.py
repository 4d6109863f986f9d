"""The examples of docs/member_examples.txt answer what the reference says."""

import unittest
from pathlib import Path

from test_boundary import designer
from zrqrybld import constants, create

EXAMPLES = Path(__file__).resolve().parent.parent.parent / "docs" / "member_examples.txt"


class Examples(unittest.TestCase):
    def test_each_answers_what_is_said(self):
        for line in EXAMPLES.read_text(encoding="utf-8").splitlines():
            if line.startswith("#"):
                continue
            member, code, answer = line.split(" | ")
            with self.subTest(member):
                names = {"qb": designer(), "constants": constants, "create": create}
                *before, last = code.split("; ")
                exec("\n".join(before), names)
                self.assertEqual(repr(eval(last, names)), answer)


if __name__ == "__main__":
    unittest.main()
