#!/usr/bin/python3
"""What people read when something goes wrong, and that the program goes on after it."""

import journey
from driver import GENERATE, SET
from surroundings import ImageService
from waiting import wait_until


class Mishaps(journey.Journey):
    def generate(self, key, status):
        self.program.put_keys(gemini=key)
        self.program.start()
        self.program.generate("a sea")
        self.program.wait_status(status)
        self.assertEqual(self.program.images(), [])
        self.program.find("push button", GENERATE)

    def test_the_service_answers_with_an_error(self):
        self.generate("fail-400", "API error: API key not valid. Please pass a valid API key.")

    def test_the_answer_holds_no_picture(self):
        self.generate("no-candidates", "Invalid response: No image in response")

    def test_the_answer_is_a_web_page(self):
        self.generate("html", "Invalid response: Failed to parse response")

    def test_the_connection_is_cut(self):
        self.generate("cut", "Network error: Connection closed")

    def test_nobody_listens(self):
        self.service.end()
        self.generate("ok-png", "Network error: Connection refused")

    def test_the_network_comes_back(self):
        self.service.end()
        self.generate("ok-png", "Network error: Connection refused")
        self.service = ImageService(self.binaries)
        self.addCleanup(self.service.end)
        self.program.generate()
        self.program.wait_status(SET)

    def test_a_key_with_a_line_break_is_not_sent(self):
        self.program.put_keys(gemini="canary\r\nX-Other: 1")
        self.program.start()
        self.program.generate("a sea")
        [status] = wait_until(lambda: [name for name in self.program.names("label")
                                       if name.startswith("Network error: ")], "the error")
        self.assertNotIn("canary", status)
        self.assertEqual(self.service.requests(), [])

    def test_the_key_went_away_meanwhile(self):
        self.program.put_keys(gemini="ok-png")
        self.program.start()
        self.program.type("Prompt", "a sea")
        self.program.wait_can_generate()
        self.program.key_file.unlink()
        self.program.press(GENERATE)
        self.program.wait_status("Missing Gemini API key \u2014 open Settings (\u2318,)")

    def test_the_folder_is_a_file(self):
        self.program.put_keys(gemini="ok-jpeg")
        (self.home / "Pictures").write_text("not a folder")
        self.program.start()
        self.program.generate("a sea")
        self.program.wait_status("Failed to save image")

    def test_a_picture_that_is_none_does_not_reach_the_desktop(self):
        self.program.put_keys(gemini="not-an-image")
        before = self.desktop.backdrop()
        self.program.start()
        self.program.generate("a sea")
        self.program.wait_status("Failed: Unsupported image format")
        self.assertEqual(self.desktop.backdrop(), before)

    def test_after_an_error_the_next_try_succeeds(self):
        self.generate("fail-503", "API error: The model is overloaded. Please try again later.")
        self.program.put_keys(gemini="ok-png")
        self.program.generate()
        self.program.wait_status(SET)

    def test_the_prompt_may_be_edited_during_a_run(self):
        self.program.put_keys(gemini="slow-1500")
        self.program.start()
        self.program.generate("the first prompt")
        self.program.find("push button", "Generating...")
        self.program.type("Prompt", "another prompt")
        self.program.wait_status(SET)
        [body] = self.request_bodies()
        self.assertIn("the first prompt", body)
        self.assertNotIn("another", body)
        self.assertEqual(self.program.text_of("Prompt"), "another prompt")


if __name__ == "__main__":
    journey.main()
