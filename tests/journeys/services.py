#!/usr/bin/python3
"""A picture from each of the three services, with and without the step to 4K."""

import json

import driver
import journey
from driver import SET

PROMPT = "dunes under \u201ca quiet sky\u201d \U0001f305"
LANDSCAPE = {"aspectRatio": "16:9", "imageSize": "4K"}


class Services(journey.Journey):
    def generate(self, status=SET):
        self.program.start()
        self.program.generate(PROMPT)
        self.program.wait_status(status)

    def only_picture(self, suffix):
        [picture] = self.program.images()
        self.assertEqual(picture.suffix, suffix)
        self.assertEqual(self.desktop.backdrop(), str(picture))
        return picture

    def check_request(self, request, path, key_header, body):
        self.assertEqual(request["method"], "POST")
        self.assertEqual(request["path"], path)
        headers = {name.lower(): value for name, value in request["headers"].items()}
        self.assertEqual(headers["content-type"], "application/json")
        self.assertEqual(headers[key_header[0]], key_header[1])
        for other in {"x-goog-api-key", "authorization"} - {key_header[0]}:
            self.assertNotIn(other, headers)
        self.assertEqual(json.loads(request["body"]), body)

    def check_gemini_request(self, request):
        self.check_request(
            request, "/v1beta/models/gemini-2.5-flash-image:generateContent",
            ("x-goog-api-key", "ok-png"),
            {"contents": [{"parts": [{"text": PROMPT}]}],
             "generationConfig": {"responseModalities": ["IMAGE"], "imageConfig": LANDSCAPE}})

    def check_grok_request(self, request):
        self.check_request(
            request, "/v1/images/generations", ("authorization", "Bearer canary-grok"),
            {"model": "grok-imagine-image", "prompt": PROMPT, "response_format": "b64_json",
             "n": 1, "aspect_ratio": "16:9"})

    def test_gemini_draws_by_default(self):
        self.program.put_keys(gemini="ok-png")
        self.generate()
        [request] = self.service.requests()
        self.check_gemini_request(request)
        self.assert_on_desktop(self.only_picture(".png"))

    def test_gemini_draws_4k_by_itself(self):
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(fourKEnabled="true")
        self.generate()
        [request] = self.service.requests()
        self.check_gemini_request(request)

    def test_grok_draws_when_nsfw_is_on(self):
        self.program.put_keys(grok="canary-grok")
        self.program.put_settings(nsfwEnabled="true")
        self.generate()
        [request] = self.service.requests()
        self.check_grok_request(request)
        self.assert_on_desktop(self.only_picture(".jpg"))

    def test_openai_draws_when_forced(self):
        self.program.put_keys(openai="canary-openai")
        self.program.put_settings(providerOverride="openai", nsfwEnabled="true")
        self.program.start()
        self.assertTrue(self.program.sees("label", "NSFW unavailable with OpenAI"))
        self.program.generate(PROMPT)
        self.program.wait_status(SET)
        [request] = self.service.requests()
        self.check_request(
            request, "/v1/images/generations", ("authorization", "Bearer canary-openai"),
            {"model": "gpt-image-1", "prompt": PROMPT, "size": "1536x1024", "quality": "high",
             "output_format": "png", "background": "opaque", "moderation": "low"})
        self.assert_on_desktop(self.only_picture(".png"))

    def test_the_chosen_model_is_asked(self):
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(selectedModel_gemini="gemini-3-pro-image-preview")
        self.generate()
        [request] = self.service.requests()
        self.assertEqual(request["path"],
                         "/v1beta/models/gemini-3-pro-image-preview:generateContent")

    def test_4k_sends_the_picture_on_to_gemini(self):
        self.program.put_keys(grok="canary-grok", gemini="canary-gemini")
        self.program.put_settings(nsfwEnabled="true")
        self.program.start()
        self.program.switch("4K resolution", True)
        self.program.generate(PROMPT)
        self.program.wait_status("Upscaling to 4K...")
        self.program.wait_status(SET)
        drawn, upscaled = self.service.requests()
        self.check_grok_request(drawn)
        self.assertEqual(upscaled["path"],
                         "/v1beta/models/gemini-3-pro-image-preview:generateContent")
        body = json.loads(upscaled["body"])
        self.assertEqual(body["contents"][0]["parts"][1]["inlineData"]["mimeType"], "image/jpeg")
        self.assertEqual(body["generationConfig"]["imageConfig"], {"imageSize": "4K"})
        [picture] = self.program.images()
        self.assert_on_desktop(picture)

    def test_a_failing_upscaler_leaves_the_picture_as_drawn(self):
        self.program.put_keys(grok="canary-grok", gemini="fail-429")
        self.program.put_settings(nsfwEnabled="true", fourKEnabled="true")
        self.generate()
        self.assertEqual(len(self.service.requests()), 2)
        self.assert_on_desktop(self.only_picture(".jpg"))

    def test_4k_without_a_gemini_key_is_not_offered(self):
        self.program.put_keys(grok="canary-grok")
        self.program.put_settings(nsfwEnabled="true", fourKEnabled="true", lastPrompt="a sea")
        self.program.start()
        self.assertTrue(self.program.sees("label", "Missing Gemini (for 4K upscale) API key"))
        self.assertTrue(self.program.sees("label", "+ Gemini 4K"))
        button = self.program.find("push button", driver.GENERATE)
        self.assertFalse(self.program.is_enabled(button))


if __name__ == "__main__":
    journey.main()
