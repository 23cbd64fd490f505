"""What launchd has to read in the helper's job. Usage: macos_job_test.py PLIST APP_ID"""

import os
import plistlib
import sys
import unittest

PLIST, APP_ID = sys.argv[1], sys.argv[2]


class MacosJob(unittest.TestCase):
    def setUp(self):
        with open(PLIST, "rb") as file:
            self.job = plistlib.load(file)

    def test_file_label_and_service_have_the_helpers_name(self):
        name = f"{APP_ID}.helper"
        self.assertEqual(os.path.basename(PLIST), f"{name}.plist")
        self.assertEqual(self.job["Label"], name)
        self.assertEqual(self.job["MachServices"], {name: True})

    def test_starts_again_after_a_crash_but_not_after_a_clean_end(self):
        self.assertEqual(self.job["KeepAlive"], {"SuccessfulExit": False})

    def test_leaves_time_to_switch_sleep_back_on_after_sigterm(self):
        self.assertGreaterEqual(self.job["ExitTimeOut"], 20)

    def test_starts_one_program_without_arguments_from_a_folder_of_root(self):
        self.assertEqual(len(self.job["ProgramArguments"]), 1)
        self.assertTrue(self.job["ProgramArguments"][0].startswith("/Library/"))
        self.assertEqual(os.path.basename(self.job["ProgramArguments"][0]), "BrindleHelper")

    def test_says_nothing_else_so_that_sigterm_is_never_replaced_by_sigkill(self):
        expected = {"Label", "ProgramArguments", "MachServices", "KeepAlive", "ExitTimeOut"}
        self.assertEqual(set(self.job), expected)  # EnableTransactions above all is not among them


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
