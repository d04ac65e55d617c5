#!/usr/bin/python3
"""A timer of one minute: it fires without asking, and runs may overlap."""

import driver
import journey
from driver import SET
from waiting import wait_until

MORE_THAN_A_MINUTE = 75


class Timer(journey.Journey):
    def test_firings_come_every_minute_and_overlap(self):
        self.program.put_keys(grok="canary-grok")
        self.program.put_settings(autoEnabled="true", intervalMinutes="1", lastPrompt="a sea",
                                  nsfwEnabled="true", fourKEnabled="true")
        self.program.start()
        self.assertEqual(self.service.requests(), [], "nothing is drawn at start")
        self.assertTrue(self.program.menu()[0].label.startswith("Next: "))

        # The key of the upscaler is missing, for which the button would be disabled: the timer
        # does not ask, and the picture stays as it was drawn.
        wait_until(self.service.requests, "the first firing", MORE_THAN_A_MINUTE)
        self.program.wait_status(SET)
        [picture] = self.program.images()
        self.assert_on_desktop(picture)
        self.assertTrue(self.program.menu()[0].label.startswith("Next: "))

        # The second firing finds a run that the person started and that still draws.
        self.program.put_keys(grok="silent")
        self.program.switch("4K resolution", False)
        self.program.generate("a sea that never comes")
        wait_until(lambda: len(self.service.requests()) == 2, "the request of the button")
        self.program.put_keys(grok="canary-grok")
        self.program.type("Prompt", "a second sea")
        wait_until(lambda: len(self.service.requests()) == 3, "the second firing",
                   MORE_THAN_A_MINUTE)
        self.program.wait_status(SET)
        self.assertIn("a second sea", self.request_bodies()[2])
        self.program.find("push button", driver.GENERATE)
        self.assertEqual(len(self.program.images()), 2)

        self.program.switch("Auto-generate", False)
        self.assertEqual(self.program.menu()[0].label, "Idle")


if __name__ == "__main__":
    journey.main()
