"""The checks before the start."""

import qxbridge
import support
from qxbridge import PreflightError, Problem
from support import Case

USER_DIR = 'HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo "UserDefinedDir"'
CONF = "C:\\Data\\vantrel.conf"
LOGS = "C:\\Data\\Logs"
LOG = LOGS + "\\Player.log"


class PreflightTest(Case):
    def problems(self, client="Helper", **options):
        return [one.what for one in qxbridge.preflight(client, **options)]

    def test_nothing_is_wrong(self):
        self.assertEqual(self.problems(), [])
        self.assertEqual(self.problems("Launcher"), [])

    def test_the_data_folder_is_not_in_the_registry(self):
        for value in (None, "", "\\"):
            self.windows.registry["UserDefinedDir"] = value
            self.assertEqual(qxbridge.preflight("Helper"), [Problem(
                f"the registry value {USER_DIR} is missing",
                "install the product, or set it to a data folder (reg add "
                "HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d <folder> /reg:64)")])

    def test_the_data_folder_does_not_exist(self):
        self.windows.registry["UserDefinedDir"] = "C:\\Nowhere"
        self.assertEqual(self.problems(), ["the data folder C:\\Nowhere does not exist"])

    def test_the_folder_of_the_log_does_not_exist(self):
        self.windows.path(LOGS).rmdir()
        self.assertEqual(self.problems(), [f"the folder {LOGS} does not exist"])

    def test_a_log_that_another_program_does_not_share(self):
        self.windows.path(LOG).touch()
        self.windows.held.add(LOG)
        self.assertEqual(self.problems(), [f"the log {LOG} cannot be opened (Windows error 32)"])

    def test_a_folder_in_which_no_log_can_be_created(self):
        self.windows.closed.add(LOGS)
        self.assertEqual(self.problems(), [f"the log {LOG} cannot be opened (Windows error 5)"])

    def test_an_existing_log_is_opened_and_no_file_is_created(self):
        self.windows.path(LOG).touch()
        self.assertEqual(self.problems(), [])
        self.assertEqual(self.windows.made, [])

    def test_the_hosts_own_log_needs_no_folder_of_logs(self):
        self.windows.path(LOGS).rmdir()
        self.assertEqual(self.problems(log_file="C:\\own.log"), [])
        self.assertEqual(self.windows.made, ["C:"])

    def test_the_hosts_own_log_that_is_held(self):
        self.windows.path("C:\\own.log").touch()
        self.windows.held.add("C:\\own.log")
        self.assertEqual(self.problems(log_file="C:\\own.log"),
                         ["the log C:\\own.log cannot be opened (Windows error 32)"])

    def test_folders_of_the_hosts_own_log_that_the_library_makes(self):
        self.assertEqual(self.problems(log_file="C:\\Data\\a\\b\\own.log"), [])
        self.assertEqual(self.windows.made, ["C:\\Data"])
        self.windows.closed.add("C:\\Data")
        self.assertEqual(self.problems(log_file="C:\\Data\\a\\b\\own.log"),
                         ["the log C:\\Data\\a\\b\\own.log cannot be opened (Windows error 5)"])

    def test_a_folder_of_the_hosts_own_log_that_the_library_does_not_make(self):
        self.assertEqual(self.problems(log_file="C:\\Data\\a/own.log"),
                         ["the folder C:\\Data\\a of the log does not exist"])

    def test_a_folder_of_the_hosts_own_log_that_the_library_makes_whatever_separates_those_above(self):
        self.assertEqual(self.problems(log_file="C:\\Data\\a/b\\own.log"), [])

    def test_a_log_on_standard_output(self):
        self.assertEqual(self.problems(log_file=""), [])
        self.assertEqual(self.windows.made, [])

    def test_the_configuration_file_does_not_exist(self):
        self.windows.path(CONF).unlink()
        self.assertEqual(self.problems(), [f"the configuration file {CONF} does not exist"])
        self.assertEqual(self.problems(no_conf_file=True), [])

    def test_a_configuration_file_that_cannot_be_read(self):
        self.patch(qxbridge._windows, "read_file", lambda _: None)
        self.assertEqual(self.problems(), [f"the configuration file {CONF} cannot be read"])

    def test_a_byte_order_mark(self):
        self.windows.path(CONF).write_bytes(b'\xef\xbb\xbfvtr.locale="de"\n')
        self.assertEqual(self.problems(), [f"the configuration file {CONF} begins with a byte order mark"])
        self.assertEqual(self.problems(no_conf_file=True), [])

    def test_another_version_of_the_product(self):
        for version, shown in (("5.1", "5.1"), (None, "")):
            self.windows.registry["Version"] = version
            self.assertEqual(self.problems("Launcher"), [
                f'the product\'s version is "{shown}", and the library\'s is "{qxbridge.generated.VERSION}"'])
            self.assertEqual(self.problems("Helper"), [])

    def test_several_problems_in_their_order(self):
        self.windows.path(LOGS).rmdir()
        self.windows.path(CONF).unlink()
        self.windows.registry["Version"] = "5.1"
        self.assertEqual([one.split(" ")[1] for one in self.problems("Launcher")],
                         ["folder", "configuration", "product's"])

    def test_without_file_and_with_an_own_log_the_data_folder_is_not_needed(self):
        self.windows.registry["UserDefinedDir"] = None
        self.assertEqual(self.problems(no_conf_file=True, log_file="C:\\own.log"), [])

    def test_the_initialisation_checks_first_and_does_not_call_the_library(self):
        self.windows.path(CONF).unlink()
        with self.assertRaises(PreflightError) as caught:
            self.bridge.init("Helper")
        self.assertEqual(str(caught.exception), f"the configuration file {CONF} does not exist: "
                                                "install the product, or start without the file")
        self.assertEqual(caught.exception.problems, tuple(self.bridge.preflight("Helper")))
        self.assertEqual(support.fake.taken(), [])
        self.start(no_conf_file=True)

    def test_every_problem_has_a_remedy(self):
        self.windows.path(LOGS).rmdir()
        self.windows.path(CONF).unlink()
        self.windows.registry["Version"] = "5.1"
        found = qxbridge.preflight("Launcher")
        self.assertEqual(len(found), 3)
        self.assertTrue(all(one.remedy for one in found))
