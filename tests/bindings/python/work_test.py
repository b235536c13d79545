"""Work of a started program, and its event."""

import asyncio
import threading

import support
from qxbridge import (ApkInstallCompleted, AppDisplayed, AppUninstalled, BridgeError, Callbacks,
                      CreateInstanceCompleted, InstallImageProgress, ListenError)
from support import AsyncCase, Case, run


class WorkTest(AsyncCase):
    def setUp(self):
        super().setUp()
        self.listen()

    def create(self):
        return self.bridge.create_fresh_instance("Nougat64", 2, 2048, "aga", "dx", "s21")

    def unfinished(self, *works):
        self.assertEqual([one.is_finished for one in works], [False] * len(works))

    def test_an_app_that_is_launched(self):
        work = self.bridge.launch_app("N", "p")
        support.fake.event("app_displayed", "N", "other")
        support.fake.event("app_displayed", "M", "p")
        support.fake.event("app_uninstalled", "N", "p")
        self.unfinished(work)
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(work.wait(), AppDisplayed("N", "p"))

    def test_an_app_that_is_uninstalled(self):
        work = self.bridge.uninstall_app("N", "p")
        support.fake.event("app_displayed", "N", "p")
        self.unfinished(work)
        support.fake.event("app_uninstalled", "N", "p")
        self.assertEqual(work.wait(), AppUninstalled("N", "p"))

    def test_a_file_that_is_installed(self):
        work = self.bridge.install_apk("N", "C:\\ü.apk")
        support.fake.event("apk_install_completed", "N", "C:\\other.apk")
        support.fake.event("apk_install_completed", "M", "C:\\ü.apk")
        self.unfinished(work)
        support.fake.event("apk_install_completed", "N", "C:\\ü.apk", number=-7)
        self.assertEqual(work.wait(), ApkInstallCompleted("N", -7, "C:\\ü.apk"))

    def test_an_image_that_is_installed(self):
        seen = []
        work = self.bridge.install_image("Nougat64", seen.append)
        support.fake.event("install_image_progress", "Nougat32", number=2)
        support.fake.event("install_image_progress", "Nougat64", number=1, progress=25.0)
        support.fake.event("install_image_progress", "Nougat64", number=-3)
        self.unfinished(work)
        support.fake.event("install_image_progress", "Nougat64", number=2, progress=100.0)
        support.fake.event("install_image_progress", "Nougat64", number=1)
        self.assertEqual(work.wait(), InstallImageProgress("Nougat64", 2, 100.0))
        self.assertEqual(seen, [InstallImageProgress("Nougat64", 1, 25.0),
                                InstallImageProgress("Nougat64", -3, 0.0)])

    def test_an_installation_without_a_function_for_progress(self):
        work = self.bridge.install_image("Nougat64")
        support.fake.event("install_image_progress", "Nougat64", number=1)
        support.fake.event("install_image_progress", "Nougat64", number=2)
        self.assertEqual(work.wait().status, 2)

    def test_a_function_for_progress_that_raises(self):
        raised, seen = self.unraised(), []
        self.bridge.register(Callbacks(install_image_progress=lambda *values: seen.append(values)))
        first = self.bridge.install_image("Nougat64", support.bad)
        other = self.bridge.install_image("Nougat64")
        support.fake.event("install_image_progress", "Nougat64", number=1)
        for _ in range(2):
            support.fake.event("install_image_progress", "Nougat64", number=2)
        self.assertEqual((first.wait().status, other.wait().status), (2, 2))
        self.assertEqual((raised, len(seen)), (["the host's own"], 3))

    def test_instances_are_created_in_the_order_of_the_calls(self):
        first, second = self.create(), self.create()
        support.fake.event("create_instance_completed", "Nougat64_1", number=0)
        self.unfinished(second)
        support.fake.event("create_instance_completed", "", number=-2)
        self.assertEqual((first.wait(), second.wait()), (CreateInstanceCompleted(0, "Nougat64_1"),
                                                         CreateInstanceCompleted(-2, "")))

    def alike(self, start, *event, **values):
        """Starts the same work twice. Each of two such events finishes the older work that is unfinished."""
        oldest, newest = start(), start()
        support.fake.event(*event, **values)
        self.assertTrue(oldest.is_finished)
        self.unfinished(newest)
        support.fake.event(*event, **values)
        self.assertTrue(newest.is_finished)

    def test_an_event_belongs_to_the_oldest_launch_that_it_fits_to(self):
        self.alike(lambda: self.bridge.launch_app("N", "p"), "app_displayed", "N", "p")

    def test_an_event_belongs_to_the_oldest_removal_that_it_fits_to(self):
        self.alike(lambda: self.bridge.uninstall_app("N", "p"), "app_uninstalled", "N", "p")

    def test_an_event_belongs_to_the_oldest_installation_of_a_file_that_it_fits_to(self):
        self.alike(lambda: self.bridge.install_apk("N", "C:\\a.apk"), "apk_install_completed", "N", "C:\\a.apk")

    def test_an_event_belongs_to_the_oldest_installation_of_an_image_that_it_fits_to(self):
        self.alike(lambda: self.bridge.install_image("Nougat64"), "install_image_progress", "Nougat64", number=2)

    def test_an_older_work_that_an_event_does_not_fit_to_is_passed_over(self):
        older, work = self.bridge.launch_app("N", "q"), self.bridge.launch_app("N", "p")
        support.fake.event("app_displayed", "N", "p")
        self.unfinished(older)
        self.assertTrue(work.is_finished)

    def test_every_installation_of_an_image_sees_its_progress(self):
        seen = []
        for _ in range(2):
            self.bridge.install_image("Nougat64", seen.append)
        support.fake.event("install_image_progress", "Nougat64", number=1)
        self.assertEqual(seen, [InstallImageProgress("Nougat64", 1, 0.0)] * 2)

    def test_the_event_may_come_before_the_program_has_started(self):
        support.fake.on_call(lambda line: line.startswith("bridgeLaunchApp") and
                             support.fake.event("app_displayed", "N", "p"))
        self.assertEqual(self.bridge.launch_app("N", "p").wait(0), AppDisplayed("N", "p"))

    def test_an_event_before_the_work_does_not_count(self):
        support.fake.event("app_displayed", "N", "p")
        self.unfinished(self.bridge.launch_app("N", "p"))

    def test_waiting_for_an_event_that_comes_later(self):
        work = self.bridge.launch_app("N", "p")
        result = self.in_thread(work.wait)
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(result(), AppDisplayed("N", "p"))

    def test_the_work_continues_after_a_time_out(self):
        work = self.bridge.launch_app("N", "p")
        self.refused(TimeoutError, "timed out after 0.01 s", work.wait, 0.01)
        self.refused(TimeoutError, "timed out after 0.01 s", lambda: run(work.finished(0.01)))
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(work.wait(), run(work.finished()))

    async def test_waiting_in_a_coroutine(self):
        work = self.bridge.launch_app("N", "p")
        waiting = [asyncio.ensure_future(work.finished()) for _ in range(2)]
        await asyncio.sleep(0)
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(await asyncio.gather(*waiting), [AppDisplayed("N", "p")] * 2)

    async def test_a_coroutine_that_is_cancelled_leaves_the_work(self):
        work = self.bridge.launch_app("N", "p")
        waiting = asyncio.ensure_future(work.finished())
        await asyncio.sleep(0)
        waiting.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await waiting
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(await work.finished(), AppDisplayed("N", "p"))

    def test_a_start_that_fails_is_not_watched(self):
        support.fake.answer(2)
        self.assertRaises(BridgeError, self.bridge.launch_app, "N", "p")
        self.assertEqual(self.bridge._dispatcher._watches, [])

    def test_finished_work_is_released(self):
        for _ in range(3):
            self.bridge.launch_app("N", "p")
        self.assertEqual(len(self.bridge._dispatcher._watches), 3)
        for left in (2, 1, 0):
            support.fake.event("app_displayed", "N", "p")
            self.assertEqual(len(self.bridge._dispatcher._watches), left)

    def test_the_end_of_the_library_ends_the_wait(self):
        work = self.bridge.launch_app("N", "p")
        waits = threading.Event()

        def wait():
            waits.set()
            return self.refused(RuntimeError, "the library has ended", work.wait)

        result = self.in_thread(wait)
        waits.wait(30)
        self.bridge.fini()
        result()
        self.refused(RuntimeError, "the library has ended", lambda: run(work.finished()))
        self.assertEqual(self.bridge._dispatcher._watches, [])

    def test_waiting_inside_a_callback_is_refused(self):
        raised, seen = self.unraised(), []
        pending, done = self.bridge.launch_app("N", "p"), self.bridge.launch_app("N", "q")
        self.bridge.register(Callbacks(app_displayed=lambda *_: seen.append(done.wait()) or pending.wait()))
        support.fake.event("app_displayed", "N", "q")
        self.assertEqual((seen, raised), ([AppDisplayed("N", "q")],
                                          ["wait() must not be called inside a callback"]))


class WithoutListeningTest(Case):
    def test_waiting_is_refused(self):
        self.start()
        work = self.bridge.launch_app("N", "p")
        self.refused(RuntimeError, "call listen() first", work.wait)
        self.refused(RuntimeError, "call listen() first", lambda: run(work.finished()))
        self.assertEqual(support.fake.taken(), ["bridgeLaunchApp N p"])

    def test_listening_may_begin_after_the_work(self):
        self.start()
        work = self.bridge.launch_app("N", "p")
        self.bridge.listen()
        support.fake.event("app_displayed", "N", "p")
        self.assertEqual(work.wait(), AppDisplayed("N", "p"))

    def test_listening_that_failed_does_not_count(self):
        self.start()
        self.windows.server = None
        self.assertRaises(ListenError, self.bridge.listen)
        self.refused(RuntimeError, "call listen() first", self.bridge.launch_app("N", "p").wait)
