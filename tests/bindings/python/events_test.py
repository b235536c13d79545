"""Streams of events, in asyncio."""

import asyncio

import qxbridge
import support
from qxbridge import (AccountListUpdated, AppDisplayed, Callbacks, EventOverflow, InstanceListUpdated,
                      InstallImageProgress)
from support import AsyncCase, run


async def next_of(stream):
    return await asyncio.wait_for(stream.__anext__(), 30)


async def rest_of(stream):
    return [one async for one in stream]


def held(stream):
    stream.close()
    return run(rest_of(stream))


class EventsTest(AsyncCase):
    def setUp(self):
        super().setUp()
        self.listen()

    def displayed(self, *packages):
        for one in packages:
            support.fake.event("app_displayed", "N", one)

    def test_all_events_arrive_in_their_order(self):
        stream = self.bridge.events()
        support.fake.library.fakeSend(1)
        events = held(stream)
        self.assertEqual([one.event for one in events], list(Callbacks._fields))
        self.assertEqual(events[4], InstallImageProgress("Nougat32", 1, 33.125))
        self.assertEqual(events[3], InstanceListUpdated())
        self.assertEqual(events[8], AccountListUpdated("Nougat64", "jürgen@example.com", 2))

    def test_events_by_name_and_by_class(self):
        streams = [self.bridge.events("app_displayed"), self.bridge.events(AppDisplayed),
                   self.bridge.events(["app_displayed", "account_list_updated"])]
        support.fake.library.fakeSend(1)
        one, other, both = map(held, streams)
        self.assertEqual(one, [AppDisplayed("Nougat64", "😀")])
        self.assertEqual(other, one)
        self.assertEqual([type(event) for event in both], [AppDisplayed, AccountListUpdated])

    def test_an_event_that_does_not_exist(self):
        with self.assertRaisesRegex(ValueError, "there is no event 'app_shown'; there are app_installed, "):
            self.bridge.events("app_shown")
        with self.assertRaisesRegex(ValueError, "int is not a class of events"):
            self.bridge.events(int)

    async def test_a_reader_that_waits_is_woken(self):
        stream = self.bridge.events("app_displayed")
        reader = asyncio.ensure_future(next_of(stream))
        await asyncio.sleep(0)
        self.assertFalse(reader.done())
        await asyncio.get_running_loop().run_in_executor(None, self.displayed, "p")
        self.assertEqual(await reader, AppDisplayed("N", "p"))

    async def test_a_reader_waits_again_and_again(self):
        stream = self.bridge.events("app_displayed")
        seen = []
        for name in ("a", "b", "c"):
            reader = asyncio.ensure_future(stream.__anext__())
            await asyncio.sleep(0)
            self.displayed(name)
            seen.append((await reader).package)
        self.assertEqual(seen, ["a", "b", "c"])

    async def test_events_that_come_between_two_reads_are_kept(self):
        stream = self.bridge.events("app_displayed")
        self.displayed("a", "b")
        self.assertEqual([(await next_of(stream)).package for _ in range(2)], ["a", "b"])

    async def test_a_full_stream_is_read_to_its_end_and_then_raises(self):
        stream = self.bridge.events(limit=2)
        self.displayed(*"ppppp")
        seen = [await next_of(stream) for _ in range(2)]
        with self.assertRaises(EventOverflow) as caught:
            await next_of(stream)
        self.assertEqual((len(seen), caught.exception.limit, str(caught.exception)),
                         (2, 2, "more than 2 events waited to be read"))

    async def test_reading_does_not_clear_an_overflow(self):
        stream = self.bridge.events(limit=1)
        self.displayed("p", "p")
        await next_of(stream)
        self.displayed("later")
        for _ in range(2):
            with self.assertRaises(EventOverflow):
                await next_of(stream)

    def test_a_stream_at_its_limit_is_not_full(self):
        stream = self.bridge.events(limit=2)
        self.displayed("p", "p")
        self.assertEqual(len(held(stream)), 2)

    def test_an_overflow_of_one_stream_leaves_the_others(self):
        small, large = self.bridge.events(limit=1), self.bridge.events()
        self.displayed("p", "p", "p")
        self.assertEqual(len(held(large)), 3)
        self.assertRaises(EventOverflow, lambda: run(rest_of(small)))

    def test_a_limit_that_holds_nothing(self):
        self.assertRaises(ValueError, lambda: self.bridge.events(limit=0))

    async def test_streams_end_with_the_library_after_what_they_hold(self):
        stream = self.bridge.events("app_displayed")
        self.displayed("p")
        self.bridge.fini()
        self.assertEqual(await rest_of(stream), [AppDisplayed("N", "p")])

    async def test_the_end_wakes_a_reader(self):
        stream = self.bridge.events()
        reader = asyncio.ensure_future(rest_of(stream))
        await asyncio.sleep(0)
        await asyncio.get_running_loop().run_in_executor(None, self.bridge.fini)
        self.assertEqual(await reader, [])

    def test_a_closed_stream_takes_nothing_more(self):
        stream = self.bridge.events()
        stream.close()
        self.displayed("p")
        self.assertEqual(run(rest_of(stream)), [])

    async def test_a_reader_that_gives_up_loses_no_event(self):
        stream = self.bridge.events("app_displayed")
        reader = asyncio.ensure_future(next_of(stream))
        await asyncio.sleep(0)
        reader.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await reader
        self.displayed("p")
        self.assertEqual(await next_of(stream), AppDisplayed("N", "p"))

    async def test_two_readers_of_one_stream_are_refused(self):
        stream = self.bridge.events()
        first = asyncio.ensure_future(next_of(stream))
        while stream._reader is None:
            await asyncio.sleep(0)
        with self.assertRaisesRegex(RuntimeError, "another task reads this stream"):
            await next_of(stream)
        stream.close()
        with self.assertRaises(StopAsyncIteration):
            await first

    def test_a_loop_that_has_ended_does_not_stop_events(self):
        raised, seen = self.unraised(), []
        stream = self.bridge.events()
        loop = asyncio.new_event_loop()
        reader = loop.create_task(stream.__anext__())
        loop.run_until_complete(asyncio.sleep(0))
        loop.close()
        self.bridge.register(Callbacks(app_displayed=lambda *_: seen.append(1)))
        self.displayed("p")
        self.assertEqual((seen, raised), ([1], []))
        reader._log_destroy_pending = False  # else asyncio reports the unfinished task

    def test_functions_get_the_events_that_a_stream_gets(self):
        seen = []
        stream = self.bridge.events("app_displayed")
        self.bridge.register(Callbacks(app_displayed=lambda *values: seen.append(values)))
        self.displayed("p")
        self.assertEqual((seen, len(held(stream))), ([("N", "p")], 1))

    def test_a_function_that_raises_does_not_keep_events_from_a_stream(self):
        raised = self.unraised()
        stream = self.bridge.events("app_displayed")
        self.bridge.register(Callbacks(app_displayed=support.bad))
        self.displayed("p")
        self.assertEqual((raised, len(held(stream))), (["the host's own"], 1))

    def test_each_event_has_its_class_and_name(self):
        self.assertEqual([one().event if one is InstanceListUpdated else one(*[0] * len(one._fields)).event
                          for one in qxbridge.generated.EVENT_TYPES.values()],
                         list(Callbacks._fields))
