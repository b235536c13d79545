"""Calls that take long, as coroutines."""

import asyncio
import threading

import support
from support import AsyncCase, run


class BackgroundTest(AsyncCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.entered, self.released = threading.Event(), threading.Event()
        self.addCleanup(self.released.set)

    def hold(self, function):
        """Blocks the function's calls until they are released."""
        def call(line):
            if line.startswith(function):
                self.entered.set()
                self.released.wait(30)

        support.fake.on_call(call)

    async def hold_commit(self, **options):
        """A task with a commit that is inside the library."""
        self.hold("bridgeConfCommit")
        task = asyncio.ensure_future(self.bridge.conf.commit_async(**options))
        await asyncio.get_running_loop().run_in_executor(None, self.entered.wait, 30)
        return task

    async def test_each_coroutine_does_what_its_function_does(self):
        await self.bridge.conf.commit_async()
        await self.bridge.conf.commit_to_file_async("C:\\ü.conf")
        instances, apps = await self.bridge.instances_async(), await self.bridge.apps_async("Nougat64")
        self.assertEqual((instances[0]["instance"], apps[0]["versionCode"]), ("Nougat64", -5))
        self.assertEqual(support.fake.taken(), [
            "bridgeConfCommit", "bridgeConfCommitToFile C:\\ü.conf", "bridgeConfGetInstances",
            "bridgeGetInstalledApps Nougat64"])

    def test_errors_arrive(self):
        support.fake.answer(13)
        self.fails("bridgeConfCommit", 13, lambda: run(self.bridge.conf.commit_async()))
        self.fails("bridgeConfCommitToFile", 13,
                   lambda: run(self.bridge.conf.commit_to_file_async("p")))

    async def test_the_event_loop_continues_meanwhile(self):
        task = await self.hold_commit()
        for _ in range(10):
            await asyncio.sleep(0)
        self.assertFalse(task.done())
        self.released.set()
        await task

    async def test_the_library_is_called_on_another_thread(self):
        threads = []
        support.fake.on_call(lambda _: threads.append(threading.current_thread().name))
        await self.bridge.conf.commit_async()
        self.assertTrue(threads[0].startswith("qxbridge"), threads)

    async def test_the_call_continues_after_a_time_out(self):
        task = await self.hold_commit(timeout=0.05)
        with self.assertRaises(TimeoutError):
            await task
        self.released.set()
        self.bridge.fini()
        self.assertEqual(support.fake.taken(), ["bridgeConfCommit", "bridgeApiFini"])

    async def test_a_task_that_is_cancelled_does_not_wait(self):
        task = await self.hold_commit()
        task.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await task

    async def test_the_end_waits_for_calls_that_run(self):
        ended = []
        task = await self.hold_commit()
        loop = asyncio.get_running_loop()
        end = loop.run_in_executor(None, lambda: (self.bridge.fini(), ended.append(1)))
        while self.bridge._background._threads is not None:
            await asyncio.sleep(0)
        self.assertEqual((ended, support.fake.taken()), ([], ["bridgeConfCommit"]))
        self.released.set()
        await asyncio.gather(task, end)
        self.assertEqual((ended, support.fake.taken()), ([1], ["bridgeApiFini"]))

    def test_before_the_start_and_after_the_end_they_are_refused(self):
        def all_refused():
            for call in (bridge.conf.commit_async, lambda: bridge.conf.commit_to_file_async("p"),
                         bridge.instances_async, lambda: bridge.apps_async("i")):
                with self.assertRaises(RuntimeError):
                    run(call())

        bridge = self.first()
        all_refused()
        bridge.init("Helper")
        bridge.fini()
        all_refused()
        self.assertIsNone(bridge._background._threads)

    def test_the_checks_hold_in_coroutines(self):
        self.write('vtr.instance.Pie64.dpi="240"')
        self.bridge.init("Helper")
        self.key_error('"Pie64" is not an image; there are Nougat32, Nougat64',
                       lambda: run(self.bridge.instances_async()))
