"""Start and end of the library."""

import gc
import subprocess
import sys

import qxbridge
import support
from qxbridge import Bridge, Callbacks
from support import Case

ENDS = """
import atexit, sys
sys.path[:0] = sys.argv[2:4]
import support
from qxbridge import Callbacks
support.load(sys.argv[1])
atexit.register(lambda: print(support.fake.taken()))
case = support.Case()
case.setUp()
case.start()
case.bridge.register(Callbacks(app_displayed=lambda *_: None))
support.fake.library.fakeFlood()
print('last')
"""


class LifeTest(Case):
    def test_initialisation_and_end(self):
        with self.bridge as bridge:
            bridge.init("Launcher")
            bridge.init("Helper", no_conf_file=True)
            bridge.init("Helper", log_file="C:\\ü.log")
        bridge.fini()
        self.assertEqual(support.fake.taken(), [
            "bridgeApiInit Launcher", "bridgeApiInitEx Helper 1 0 (null)",
            "bridgeApiInitEx Helper 0 0 C:\\ü.log", "bridgeApiFini"])

    def test_a_failed_initialisation_needs_no_end(self):
        support.fake.answer(22)
        with self.bridge:
            self.fails("bridgeApiInit", 22, self.bridge.init, "Nobody")
        self.assertEqual(support.fake.taken(), ["bridgeApiInit Nobody"])

    def refused_now(self, words, call, *values):
        with self.assertRaisesRegex(RuntimeError, words):
            call(*values)

    def test_a_second_bridge_is_refused_and_the_first_keeps_its_callbacks(self):
        seen = []
        self.start()
        self.bridge.register(Callbacks(app_displayed=lambda *_: seen.append(1)))
        other = Bridge(support.fake.path)
        self.refused_now("another Bridge", other.init, "Launcher")
        self.refused_now("call init", other.register, Callbacks())
        other.fini()
        support.fake.library.fakeSend(1)
        self.assertEqual(seen, [1])
        self.assertEqual(support.fake.taken(), ["bridgeRegisterCallbacks"])

    def test_after_the_end_nothing_starts_again(self):
        self.start()
        self.bridge.fini()
        for bridge in (self.bridge, Bridge(support.fake.path)):
            self.refused_now("once per process", bridge.init, "Helper")
            self.refused_now("has ended", bridge.register, Callbacks())
            self.refused_now("has ended", bridge.instances)
            bridge.fini()
        self.assertEqual(support.fake.taken(), ["bridgeApiFini"])

    def test_a_second_start_is_refused_before_the_preflight(self):
        self.start()
        self.windows.path("C:\\Data\\vantrel.conf").unlink()
        self.refused_now("another Bridge", Bridge(support.fake.path).init, "Helper")
        self.bridge.fini()
        self.refused_now("once per process", self.bridge.init, "Helper")

    def test_the_end_in_a_callback_is_refused_and_events_go_on(self):
        raised, seen = self.unraised(), []
        self.start()
        self.bridge.register(Callbacks(app_installed=lambda _: self.bridge.fini(),
                                       app_displayed=lambda *_: seen.append(1)))
        support.fake.library.fakeSend(1)
        self.assertEqual(raised, ["fini() must not be called inside a callback"])
        self.assertEqual(seen, [1])
        self.bridge.conf.commit()
        self.bridge.fini()
        self.assertEqual(support.fake.taken(),
                         ["bridgeRegisterCallbacks", "bridgeConfCommit", "bridgeApiFini"])

    def test_before_the_start_and_after_the_end_nothing_reaches_the_library(self):
        bridge = self.bridge
        calls = [lambda: bridge.conf.get_bool("vtr.enable_adb_access"),
                 lambda: bridge.conf.set_i32("vtr.mim.max_fps", 1), bridge.conf.commit,
                 bridge.instances, lambda: bridge.apps("i"), lambda: bridge.launch_app("i", "p"),
                 lambda: bridge.register(Callbacks()), bridge.listen, bridge.events]

        def all_refused():
            for call in calls:
                with self.assertRaises(RuntimeError):
                    call()

        all_refused()
        support.fake.answer(-1)
        self.fails("bridgeApiInit", -1, bridge.init, "Helper")
        all_refused()
        support.fake.answer(0)
        bridge.init("Helper")
        bridge.fini()
        all_refused()
        self.assertEqual(support.fake.taken(), ["bridgeApiInit Helper"] * 2 + ["bridgeApiFini"])

    def test_the_client_id_outlives_the_call(self):
        self.bridge.init("".join(["Log", "Collector"]))
        for _ in range(50):
            gc.collect()
            _ = [b"x" * n for n in range(8, 500)]
        self.assertEqual(support.fake.library.fakeClient(), b"LogCollector")

    def test_the_end_while_events_arrive(self):
        seen = []
        self.start()
        self.bridge.register(Callbacks(app_displayed=lambda *values: seen.append(values)))
        support.fake.library.fakeFlood()
        while len(seen) < 100:
            pass
        self.bridge.fini()
        count = len(seen)
        gc.collect()
        self.assertEqual(len(seen), count)

    def test_the_interpreter_ends_the_library(self):
        folders = [support.TREE / "bindings/python", support.TREE / "tests/bindings/python"]
        result = subprocess.run([sys.executable, "-B", "-c", ENDS, support.fake.path, *folders],
                                capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "last\n['bridgeRegisterCallbacks', 'bridgeApiFini']\n", ""))
