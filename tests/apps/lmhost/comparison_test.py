# SPDX-License-Identifier: MIT
"""The comparison itself: it accepts a program that answers like ezdxf and sees each fault of one that doesn't."""
import copy
import json
import os
import unittest

import fake_lmhost
import judge_ezdxf
import support

os.environ["LMHOST"] = os.path.join(support.HERE, "fake_lmhost.py")


class Comparison(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        document = judge_ezdxf.read(support.SAMPLE)
        cls.info, cls.blocks = judge_ezdxf.expected_info(document), judge_ezdxf.expected_blocks(document)

    def differences(self, info, blocks):
        return (judge_ezdxf.differences_of_info(self.info, info)
                + judge_ezdxf.differences_of_blocks(self.blocks, blocks, prompts=True))

    def test_accepts_the_right_answer(self):
        self.assertEqual(self.differences(copy.deepcopy(self.info), copy.deepcopy(self.blocks)), [])

    def test_sees_every_fault(self):
        for fault in fake_lmhost.FAULTS:
            with self.subTest(fault.__name__):
                info, blocks = copy.deepcopy(self.info), copy.deepcopy(self.blocks)
                fault(info, blocks)
                self.assertNotEqual(self.differences(info, blocks), [])

    def test_the_answers_of_a_program_come_through(self):
        for fault in ("", "accents_lost"):
            runs = [support.Run(command, support.SAMPLE, "--json", environment={"FAKE_FAULT": fault})
                    for command in ("info", "blocks")]
            self.assertEqual([run.code for run in runs], [0, 0])
            found = self.differences(*(json.loads(run.output) for run in runs))
            self.assertEqual(bool(found), bool(fault))

    def test_a_refusal_is_one_line_with_the_name(self):
        run = support.Run("info", "/nowhere/nothing.dxf", "--json")
        support.check_refusal(self, run, "/nowhere/nothing.dxf")
        with self.assertRaises(AssertionError):
            support.check_refusal(self, run, "/nowhere/other.dxf")

    def test_caret_forms_are_decoded_and_blanks_trimmed(self):
        self.assertEqual(judge_ezdxf.plain("^Ia^ b^Lc^J"), "a^b\fc")
        self.assertEqual(judge_ezdxf.plain("  2^x "), "2^x")

    def test_an_angle_may_differ_by_whole_turns(self):
        self.assertTrue(judge_ezdxf.close_angle(7.853981633974483, 1.5707963267948966))
        self.assertFalse(judge_ezdxf.close_angle(1.5707963267948966, 1.5708))


if __name__ == "__main__":
    unittest.main()
