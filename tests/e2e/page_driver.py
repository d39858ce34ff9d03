#!/usr/bin/env python3
"""Drives the operator's page in headless Chromium, over the WebDriver protocol of chromedriver.

    page_driver.py URL#TOKEN --width 360 --height 740 --click '#take-1' --wait-text '#link=connected' --screenshot a.png

The steps --wait-text, --wait-attribute, --wait-picture, --pause, --click and --type run in the order in which they are given. What was seen is
printed as one JSON object. The exit code is 1 when a step fails, or when the browser's console has an error that no
--allow covers; violations of the content security policy are such errors.
"""

import argparse
import base64
import json
import re
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request

ELEMENT_KEY = "element-6066-11e4-a52e-4f735466cecf"
POLL_S = 0.05
START_LIMIT_S = 30

CHROMIUM_ARGUMENTS = [
    "--headless=new",
    "--no-sandbox",  # Chromium refuses its sandbox to root
    "--disable-gpu",
    "--disable-dev-shm-usage",  # containers have too little of it
    "--disable-quic",
    "--disable-sync",
    "--disable-background-networking",
    "--disable-component-update",
    "--no-first-run",
    "--hide-scrollbars",
]


class PageError(Exception):
    """A step did not come true in time, or the browser refused it."""


class Page:
    """One browser with one page. Use it in a with statement, so that the browser ends with it."""

    def __init__(self, width, height, timeout_s=15.0):
        self.timeout_s = timeout_s
        self._session = None
        self._messages = []
        self._profile = tempfile.TemporaryDirectory(prefix="page-driver-", ignore_cleanup_errors=True)
        self._driver = None
        try:
            self._start_driver()
            self._start_session(width, height)
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _start_driver(self):
        program = shutil.which("chromedriver")
        if not program:
            raise PageError("chromedriver is not installed")
        self._driver = subprocess.Popen(
            [program, "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True
        )
        # Its port is free for certain only because it chose it itself.
        for line in self._driver.stdout:
            found = re.search(r"started successfully on port (\d+)", line)
            if found:
                self._base = f"http://127.0.0.1:{found.group(1)}"
                return
        raise PageError("chromedriver does not start")

    def _start_session(self, width, height):
        options = {
            "args": CHROMIUM_ARGUMENTS + [f"--user-data-dir={self._profile.name}"],
            # A desktop window cannot be as narrow as a phone.
            "mobileEmulation": {"deviceMetrics": {"width": width, "height": height, "pixelRatio": 1}},
        }
        browser = shutil.which("chromium") or shutil.which("google-chrome")
        if browser:
            options["binary"] = browser
        capabilities = {
            "browserName": "chrome",
            "goog:chromeOptions": options,
            "goog:loggingPrefs": {"browser": "ALL"},
        }
        reply = self._call("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}}, START_LIMIT_S)
        self._session = reply["sessionId"]

    def _call(self, method, path, values=None, limit_s=None):
        data = None if method != "POST" else json.dumps(values or {}).encode()
        request = urllib.request.Request(
            self._base + path, data=data, method=method, headers={"Content-Type": "application/json"}
        )
        try:
            with urllib.request.urlopen(request, timeout=limit_s or self.timeout_s + START_LIMIT_S) as reply:
                return json.load(reply)["value"]
        except urllib.error.HTTPError as error:
            value = json.loads(error.read() or b"{}").get("value") or {}
            raise PageError(f"{value.get('error')}: {value.get('message', '').split(chr(10))[0]}") from None
        except OSError as error:
            raise PageError(f"chromedriver does not answer: {error}") from None

    def _command(self, method, path, values=None):
        return self._call(method, f"/session/{self._session}{path}", values)

    def open(self, url):
        """Opens the address, whose part after # is the token."""
        self._command("POST", "/url", {"url": url})
        shown = self.script("return document.URL")
        if not shown.startswith("http"):
            raise PageError(f"the browser cannot open {url}: {shown}")

    def script(self, text, *arguments):
        """Runs the body of a function in the page and gives what it returns."""
        return self._command("POST", "/execute/sync", {"script": text, "args": list(arguments)})

    def text(self, selector):
        """The text of the first element, in one line; None without such an element."""
        found = "const e = document.querySelector(arguments[0]); return e && e.textContent;"
        text = self.script(found, selector)
        return None if text is None else " ".join(text.split())

    def attribute(self, selector, name):
        """The attribute of the first element; None without the element or the attribute."""
        found = "const e = document.querySelector(arguments[0]); return e && e.getAttribute(arguments[1]);"
        return self.script(found, selector, name)

    def wait(self, condition, what):
        """Asks until condition() is true; what is told when it does not become true in time."""
        end = time.monotonic() + self.timeout_s
        while not condition():
            if time.monotonic() > end:
                raise PageError(f"not seen within {self.timeout_s:g} s: {what}")
            time.sleep(POLL_S)

    def wait_text(self, selector, text):
        """Waits until the text of the element contains the text."""
        self.wait(lambda: text in (self.text(selector) or ""), f"text {text!r} in {selector}")

    def wait_attribute(self, selector, name, value):
        """Waits until the element has the attribute with exactly this value."""
        self.wait(lambda: self.attribute(selector, name) == value, f"{name}={value!r} at {selector}")

    def _element(self, selector):
        found = self._command("POST", "/element", {"using": "css selector", "value": selector})
        return found[ELEMENT_KEY]

    def click(self, selector):
        """Scrolls to the element and clicks its middle, as a hand does: an element that is covered is an error."""
        self.wait(lambda: self.script("return !!document.querySelector(arguments[0])", selector), selector)
        # The browser would leave it under the bar at the bottom, where it counts as visible.
        self.script("document.querySelector(arguments[0]).scrollIntoView({ block: 'center' })", selector)
        self._command("POST", f"/element/{self._element(selector)}/click")

    def type(self, selector, text):
        """Types the text into a field; "\\ue007" is the return key, "\\ue00d" the space bar, for buttons too."""
        self._command("POST", f"/element/{self._element(selector)}/value", {"text": text})

    def screenshot(self, path):
        """Writes what the window shows as PNG."""
        picture = base64.b64decode(self._command("GET", "/screenshot"))
        with open(path, "wb") as file:
            file.write(picture)

    def console_messages(self):
        """All messages of the browser's console so far, as (level, text)."""
        for entry in self._command("POST", "/se/log", {"type": "browser"}):
            self._messages.append((entry["level"], entry["message"]))
        return self._messages

    def console_errors(self, allowed=()):
        """The errors among the messages of the console that contain none of the allowed texts."""
        errors = [text for level, text in self.console_messages() if level == "SEVERE"]
        return [text for text in errors if not any(part in text for part in allowed)]

    def seen(self):
        """What the page shows of the desk, for whoever judges it."""
        return self.script(
            """
            const text = selector => (document.querySelector(selector)?.textContent || "").trim();
            const picture = document.querySelector("#program-picture");
            const scroll = document.scrollingElement;
            return {
              link: document.querySelector("#link")?.dataset.state,
              locked: document.body.classList.contains("locked"),
              stale: document.body.classList.contains("stale"),
              program: text("#program-name"), preview: text("#preview-name"), message: text("#message"),
              picture: picture && !picture.hidden ? [picture.naturalWidth, picture.naturalHeight] : null,
              tiles: [...document.querySelectorAll(".tile")].map(tile => ({
                channel: Number(tile.dataset.channel), name: tile.querySelector(".name").textContent,
                onProgram: tile.classList.contains("on-program"), onPreview: tile.classList.contains("on-preview"),
              })),
              takes: [0, 1, 2, 3].map(index => text("#take-" + index)),
              record: document.querySelector("#record")?.getAttribute("aria-pressed"),
              stream: document.querySelector("#stream")?.getAttribute("aria-pressed"),
              address: location.href,
              width: innerWidth, contentWidth: scroll.scrollWidth,
            };
            """
        )

    def close(self):
        """Ends the browser and its driver."""
        try:
            if self._session:
                self._command("DELETE", "")
        except PageError:
            pass  # the driver is ended below anyway
        self._session = None
        if self._driver:
            self._driver.terminate()
            try:
                self._driver.wait(5)
            except subprocess.TimeoutExpired:
                self._driver.kill()
                self._driver.wait()
            self._driver.stdout.close()
            self._driver = None
        self._profile.cleanup()


def pair(text):
    """SELECTOR=TEXT; a selector may contain = inside brackets."""
    found = re.fullmatch(r"((?:\[[^\]]*\]|[^=\[])+)=(.*)", text, re.DOTALL)
    if not found:
        raise argparse.ArgumentTypeError(f"not of the form SELECTOR=TEXT: {text}")
    return found.group(1), found.group(2)


def triple(text):
    """SELECTOR@NAME=VALUE."""
    found = re.fullmatch(r"(.+)@([\w-]+)=(.*)", text, re.DOTALL)
    if not found:
        raise argparse.ArgumentTypeError(f"not of the form SELECTOR@NAME=VALUE: {text}")
    return found.groups()


class Step(argparse.Action):
    """Keeps the steps of all options in one list, because their order matters."""

    def __call__(self, parser, namespace, values, option_string=None):
        namespace.steps = [*(namespace.steps or []), (self.dest, values)]


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("url")
    parser.add_argument("--width", type=int, default=1280)
    parser.add_argument("--height", type=int, default=800)
    parser.add_argument("--timeout", type=float, default=15, help="seconds for each thing that is waited for")
    parser.add_argument("--screenshot", metavar="FILE", help="taken after the last step, also when one failed")
    parser.add_argument("--allow", metavar="TEXT", action="append", default=[], help="lets errors with the text pass")
    parser.add_argument("--click", metavar="SELECTOR", action=Step)
    parser.add_argument("--wait-picture", action=Step, nargs=0, help="until the program picture is live")
    parser.add_argument("--pause", metavar="SECONDS", type=float, action=Step, help="for what the page takes for a double tap")
    parser.add_argument("--type", metavar="SELECTOR=TEXT", type=pair, action=Step)
    parser.add_argument("--wait-text", metavar="SELECTOR=TEXT", type=pair, action=Step)
    parser.add_argument("--wait-attribute", metavar="SELECTOR@NAME=VALUE", type=triple, action=Step)
    parser.set_defaults(steps=[])
    return parser.parse_args()


def run_step(page, name, values):
    if name == "click":
        page.click(values)
    elif name == "wait_picture":
        page.wait(lambda: page.seen()["picture"] and not page.seen()["stale"], "the program picture")
    elif name == "pause":
        time.sleep(values)
    elif name == "type":
        page.type(*values)
    elif name == "wait_text":
        page.wait_text(*values)
    else:
        page.wait_attribute(*values)


def main():
    options = arguments()
    result = {"failure": None, "consoleErrors": [], "seen": None}
    try:
        with Page(options.width, options.height, options.timeout) as page:
            try:
                page.open(options.url)
                for name, values in options.steps:
                    run_step(page, name, values)
            except PageError as error:
                result["failure"] = str(error)
            if options.screenshot:
                page.screenshot(options.screenshot)
            result["seen"] = page.seen()
            result["consoleErrors"] = page.console_errors(options.allow)
    except PageError as error:
        result["failure"] = result["failure"] or str(error)
    print(json.dumps(result, indent=1, ensure_ascii=False))
    return 1 if result["failure"] or result["consoleErrors"] else 0


if __name__ == "__main__":
    sys.exit(main())
