"""Headless Chromium, driven over its DevTools pipe."""

import base64
import json
import os
import select
import subprocess
import tempfile
import time

LIMIT = 30  # seconds for one step
START_LIMIT = 60


class Navigated(AssertionError):
    """The page was replaced while it was asked something."""


class Browser:
    """One page of a browser with a profile of its own."""

    def __init__(self, width=1100, height=900):
        self.size = (width, height)
        self.number = 0
        self.buffer = b""
        self.session = None
        self.problems = []  # what the page's scripts complained about

    def __enter__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="browser-", ignore_cleanup_errors=True)
        to_browser, self.send_fd = os.pipe()
        self.receive_fd, from_browser = os.pipe()

        def place():  # the browser reads descriptor 3 and writes descriptor 4
            os.dup2(to_browser, 13)
            os.dup2(from_browser, 14)
            os.dup2(13, 3)
            os.dup2(14, 4)

        self.process = subprocess.Popen(
            ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--disable-dev-shm-usage", "--remote-debugging-pipe", "--user-data-dir=" + self.profile.name,
             "--hide-scrollbars", "--window-size=%d,%d" % self.size, "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=place,
            pass_fds=(3, 4))
        os.close(to_browser)
        os.close(from_browser)
        targets = self.command("Target.getTargets", limit=START_LIMIT)["targetInfos"]
        target = next(one["targetId"] for one in targets if one["type"] == "page")
        self.session = self.command("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.command(domain + ".enable")
        return self

    def __exit__(self, *_):
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.send_fd)
        os.close(self.receive_fd)
        self.profile.cleanup()

    def command(self, method, limit=LIMIT, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.send_fd, json.dumps(message).encode() + b"\0")
        end = time.monotonic() + limit
        while True:
            answer = self._receive(end, method)
            if answer.get("id") == self.number:
                if "error" in answer:
                    problem = answer["error"]["message"]
                    kind = Navigated if "navigated" in problem or "context" in problem else AssertionError
                    raise kind("%s: %s" % (method, problem))
                return answer["result"]
            self._notice(answer)

    def _receive(self, end, what):
        while b"\0" not in self.buffer:
            left = end - time.monotonic()
            if left <= 0 or not select.select([self.receive_fd], [], [], left)[0]:
                raise AssertionError("no answer from the browser: " + what)
            piece = os.read(self.receive_fd, 1 << 16)
            if not piece:
                raise AssertionError("the browser has ended: " + what)
            self.buffer += piece
        message, self.buffer = self.buffer.split(b"\0", 1)
        return json.loads(message)

    def _notice(self, event):
        if event.get("method") == "Runtime.exceptionThrown":
            details = event["params"]["exceptionDetails"]
            self.problems.append(details.get("exception", {}).get("description", details["text"]))
        elif event.get("method") == "Page.javascriptDialogOpening":
            os.write(self.send_fd, json.dumps({"id": 0, "method": "Page.handleJavaScriptDialog",
                                               "params": {"accept": True}, "sessionId": self.session}).encode() + b"\0")

    def open(self, url):
        self.command("Page.navigate", url=url)

    def reload(self):
        """Loads the page anew and waits until its view is there."""
        self.run("window.isOld = true")
        self.command("Page.reload")
        self.wait("!window.isOld && document.body.dataset.loaded")

    def run(self, script):
        """The value of an expression in the page."""
        result = self.command("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in result:
            raise AssertionError(script + ": " + json.dumps(result["exceptionDetails"]))
        return result["result"].get("value")

    def wait(self, script, limit=LIMIT):
        """Waits until an expression is true, also while one page replaces another."""
        end = time.monotonic() + limit
        while time.monotonic() < end:
            try:
                if self.run("(() => { try { return !!(%s); } catch { return false; } })()" % script):
                    return  # a page that is just being replaced has no body
            except Navigated:
                pass
            time.sleep(0.05)
        raise AssertionError("never true: %s\nstatus: %s" % (script, self.run(
            "document.getElementById('status')?.textContent")))

    def view(self, name):
        """Goes to a view by its link and waits until all of it is there."""
        self.run("document.querySelector('nav a[href=\"#/%s\"]').click()" % name)
        self.wait("document.body.dataset.loaded === '%s'" % name)

    def fill(self, selector, value):
        self.run("""(() => {
            const input = document.querySelector(%s);
            if (input.type === 'checkbox') input.checked = %s; else input.value = %s;
            input.dispatchEvent(new Event('input', {bubbles: true}));
            input.dispatchEvent(new Event('change', {bubbles: true}));
        })()""" % (json.dumps(selector), "true" if value is True else "false", json.dumps(str(value))))

    def click(self, selector):
        self.run("document.querySelector(%s).click()" % json.dumps(selector))

    def place_of(self, selector):
        """The middle of an element in the window."""
        return self.run("""(() => {
            const one = document.querySelector(%s);
            one.scrollIntoView({block: 'center'});
            const r = one.getBoundingClientRect();
            return [r.left + r.width / 2, r.top + r.height / 2];
        })()""" % json.dumps(selector))

    def mouse(self, kind, x, y):
        self.command("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", buttons=1, clickCount=1)

    def drag(self, begin, end):
        self.mouse("mousePressed", *begin)
        self.mouse("mouseMoved", (begin[0] + end[0]) / 2, (begin[1] + end[1]) / 2)
        self.mouse("mouseMoved", *end)
        self.mouse("mouseReleased", *end)

    def key(self, key, text=None):
        more = {"text": text} if text else {}
        self.command("Input.dispatchKeyEvent", type="keyDown", key=key, **more)
        self.command("Input.dispatchKeyEvent", type="keyUp", key=key)

    def screenshot(self, path, width, height=None, dark=False):
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height or 900, deviceScaleFactor=1,
                     mobile=False)
        time.sleep(0.3)  # the page is laid out anew
        data = self.command("Page.captureScreenshot", format="png")["data"]
        with open(path, "wb") as file:
            file.write(base64.b64decode(data))
