#!/usr/bin/python3
"""Drives the control page in headless Chromium over the DevTools protocol.

Loads the page, filters the fleet for one chamber's address, takes that
chamber offline by clicking its state button, then shows the first page with
the chosen chamber's details and saves a screenshot. Prints one JSON object
with what the page showed; exits 1 with a message on any failure.

    control_page.py URL CHAMBER_ID FILTER SCREENSHOT.png
"""
import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.request

import websocket

TIMEOUT_S = 30


class Page:
    def __init__(self, socket_url):
        # Chromium refuses a DevTools handshake that carries an Origin it wasn't
        # told to allow (older builds even for localhost); the client sends none.
        self.socket = websocket.create_connection(socket_url, timeout=TIMEOUT_S, suppress_origin=True)
        self.next_id = 0

    def call(self, method, **params):
        self.next_id += 1
        self.socket.send(json.dumps({"id": self.next_id, "method": method, "params": params}))
        while True:
            message = json.loads(self.socket.recv())
            if message.get("id") == self.next_id:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message.get("result", {})

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def wait_for(self, expression, what):
        deadline = time.monotonic() + TIMEOUT_S
        while time.monotonic() < deadline:
            value = self.evaluate(expression)
            if value:
                return value
            time.sleep(0.05)
        raise RuntimeError(f"timed out waiting for {what}")

    def click(self, selector):
        box = self.wait_for(
            f"(() => {{ const e = document.querySelector({json.dumps(selector)}); if (!e) return null;"
            " const r = e.getBoundingClientRect(); return {x: r.x + r.width / 2, y: r.y + r.height / 2}; })()",
            selector)
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=box["x"], y=box["y"], button="left", clickCount=1)


def launch_browser(profile):
    browser = shutil.which("chromium") or "/usr/bin/chromium"
    arguments = [browser, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 "--disable-dev-shm-usage", "--hide-scrollbars", "--window-size=1600,1000",
                 "--remote-debugging-address=127.0.0.1", "--remote-debugging-port=0",
                 f"--user-data-dir={profile}", "about:blank"]
    process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    port_file = os.path.join(profile, "DevToolsActivePort")
    deadline = time.monotonic() + TIMEOUT_S
    while time.monotonic() < deadline:
        if os.path.exists(port_file):
            lines = open(port_file).read().split()
            if len(lines) >= 2:
                return process, int(lines[0])
        if process.poll() is not None:
            raise RuntimeError(f"chromium ended with {process.returncode}")
        time.sleep(0.05)
    raise RuntimeError("chromium opened no DevTools port")


def main():
    url, chamber, filter_text, screenshot = sys.argv[1], int(sys.argv[2]), sys.argv[3], sys.argv[4]
    profile = tempfile.mkdtemp(prefix="control-page-")
    process = None
    try:
        process, port = launch_browser(profile)
        with urllib.request.urlopen(f"http://127.0.0.1:{port}/json/list", timeout=TIMEOUT_S) as response:
            targets = json.load(response)
        page = Page(next(t["webSocketDebuggerUrl"] for t in targets if t["type"] == "page"))
        page.call("Page.enable")
        page.call("Page.navigate", url=url)
        first = page.wait_for("document.querySelectorAll('#chambers tr').length", "the first rows")
        total = page.wait_for("document.getElementById('range').textContent", "the pager")

        page.click("#filter")
        page.call("Input.insertText", text=filter_text)
        button = f"#chambers button.state[data-id='{chamber}']"
        page.wait_for(f"document.querySelectorAll('#chambers tr').length < {first}"
                      f" && !!document.querySelector(\"{button}\")", "the filtered rows")
        filtered = page.evaluate("Array.from(document.querySelectorAll('#chambers tr')).map(r => r.dataset.id)")
        page.click(button)
        state = page.wait_for(f"(() => {{ const b = document.querySelector(\"{button}\");"
                              " return b && b.dataset.online === 'false' ? b.textContent : null; })()",
                              "the chamber's state to turn offline")

        # The first page again, one chamber chosen, for the picture.
        page.evaluate("(() => { const f = document.getElementById('filter'); f.value = '';"
                      " f.dispatchEvent(new Event('input')); })()")
        page.wait_for(f"document.querySelectorAll('#chambers tr').length === {first}", "the whole first page")
        page.click("#chambers tr:nth-child(3)")
        page.wait_for("!document.getElementById('detailForms').hidden", "the chamber's details")
        page.evaluate("new Promise(r => setTimeout(r, 300))")
        image = page.call("Page.captureScreenshot", format="png")["data"]
        with open(screenshot, "wb") as file:
            file.write(base64.b64decode(image))
        print(json.dumps({"firstPageRows": first, "range": total, "filtered": filtered, "state": state}))
        return 0
    except Exception as error:  # one message for whatever went wrong
        print(f"control page: {error}", file=sys.stderr)
        return 1
    finally:
        if process:
            process.kill()
            process.wait()
        shutil.rmtree(profile, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
