#!/usr/bin/env python3
"""Holds the charts of a page, as a browser draws them, against the places that the layout gave them.

usage: check_chart_page.py PAGE.html MARKS.json

Both come from show_chart. For wide and for narrow screens each mark lies within half a pixel of its
place; no text leaves the picture or lies over another one; each mark that the keyboard reaches has a
name, takes the focus, and shows its ring and its tooltip.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import urllib.request

# How much nearer letters may stand than the layout, which does not kern, takes them to.
KERNING = 1.5

# What the browser finds in one picture. Boxes are those of the shapes, without their lines' widths.
MEASURE = r"""
const [id] = arguments;
const svg = document.getElementById(id)?.closest('svg');
if (!svg || !svg.getClientRects().length) return null;
const marks = [];
for (const shape of svg.querySelectorAll('rect, line, circle, path, text')) {
  if (shape.closest('.c-m, mask')) continue;
  const box = shape.getBBox();
  const turn = shape.transform.baseVal.consolidate()?.matrix;
  const corners = [[box.x, box.y], [box.x + box.width, box.y],
                   [box.x + box.width, box.y + box.height], [box.x, box.y + box.height]];
  marks.push({tag: shape.tagName, title: shape.querySelector('title')?.textContent ?? '',
              points: corners.map(([x, y]) => {
                const at = new DOMPoint(x, y).matrixTransform(turn ?? new DOMMatrix());
                return [at.x, at.y];
              })});
}
const stops = [];
for (const stop of svg.querySelectorAll('[tabindex]')) {
  stop.focus();
  const ring = getComputedStyle(stop.querySelector(':scope > rect, :scope > line'));
  stops.push({name: stop.getAttribute('aria-label'), focused: document.activeElement === stop,
              ring: ring.stroke !== 'none',
              tip: getComputedStyle(stop.querySelector('.c-tip')).visibility === 'visible'});
}
return {box: svg.viewBox.baseVal.width + ' ' + svg.viewBox.baseVal.height, marks, stops};
"""


class Browser:
    """A headless browser, driven by its driver's plain HTTP."""

    def __init__(self, folder):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True)
        try:
            self.start(folder)
        except BaseException:
            self.driver.kill()
            raise

    def start(self, folder):
        port = None
        while port is None:
            line = self.driver.stdout.readline()
            if not line:
                raise SystemExit("chromedriver does not start")
            port = re.search(r"started successfully on port (\d+)", line)
        self.url = f"http://127.0.0.1:{port[1]}/session"
        arguments = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update",
                     "--disable-sync", "--disable-dev-shm-usage", f"--user-data-dir={folder}"]
        options = {"capabilities": {"alwaysMatch": {"goog:chromeOptions": {"args": arguments}}}}
        self.url += "/" + self.call("", options)["sessionId"]

    def call(self, path, content, method="POST"):
        data = None if content is None else json.dumps(content).encode()
        request = urllib.request.Request(self.url + path, data, {"Content-Type": "application/json"},
                                         method=method)
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(request, timeout=120) as answer:
            return json.load(answer)["value"]

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": arguments})

    def open(self, page, width):
        metrics = {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False}
        self.call("/goog/cdp/execute",
                  {"cmd": "Emulation.setDeviceMetricsOverride", "params": metrics})
        self.call("/url", {"url": page.resolve().as_uri()})

    def press_tab(self):
        for kind in ("rawKeyDown", "keyUp"):
            self.call("/goog/cdp/execute", {"cmd": "Input.dispatchKeyEvent", "params": {
                "type": kind, "key": "Tab", "code": "Tab", "windowsVirtualKeyCode": 9}})

    def close(self):
        try:
            self.call("", None, "DELETE")
        finally:
            self.driver.terminate()
            self.driver.wait()


def bounds(points):
    xs, ys = [x for x, _ in points], [y for _, y in points]
    return min(xs), min(ys), max(xs), max(ys)


def away(expected, found):
    """How far a mark lies from its place, in pixels."""
    if not expected["points"]:
        return 0
    if expected["text"]:
        # A browser's box has another height, so a text is held by the middles of its two ends.
        ends = [[[(a[i] + b[i]) / 2 for i in (0, 1)] for a, b in ((p[0], p[3]), (p[1], p[2]))]
                for p in (expected["points"], found["points"])]
        run = [ends[0][1][i] - ends[0][0][i] for i in (0, 1)]
        length = (run[0] ** 2 + run[1] ** 2) ** 0.5 or 1
        return max(abs(sum((f[i] - e[i]) * run[i] for i in (0, 1))) / length
                   for e, f in zip(*ends))
    return max(abs(a - b) for a, b in zip(bounds(expected["points"]), bounds(found["points"])))


def apart(a, b, slack):
    """Whether a line parallel to a side of `a` divides two rectangles, but for `slack` pixels."""
    for i in (0, 1):
        axis = (a[i + 1][0] - a[i][0], a[i + 1][1] - a[i][1])
        length = (axis[0] ** 2 + axis[1] ** 2) ** 0.5
        if length == 0:
            return True
        spans = [[(x * axis[0] + y * axis[1]) / length for x, y in points] for points in (a, b)]
        if max(spans[0]) - slack <= min(spans[1]) or max(spans[1]) - slack <= min(spans[0]):
            return True
    return False


def has_plain_letters(text):
    """Whether the picture's own font has all of its letters, so that their widths are known."""
    return bool(text.strip()) and all(" " <= c < "\u0250" or c in "\u2013\u2026\u2212" for c in text)


def complaints(scene, picture):
    marks = picture["marks"]
    if len(marks) != len(scene["marks"]):
        yield f"{len(marks)} marks in place of {len(scene['marks'])}"
        return
    texts = []
    for expected, found in zip(scene["marks"], marks):
        named = not picture["stops"] and expected["tip"]
        if named and " ".join(found["title"].split()) != " ".join(expected["tip"].split()):
            if all(c >= " " or c == "\n" for c in expected["tip"]):
                yield f"the title of {expected['tip']!r} is {found['title']!r}"
        text = expected["text"]
        known = not text or has_plain_letters(text)
        if known and away(expected, found) > (KERNING if text else 0.5):
            yield f"{found['tag']} {text!r} lies {away(expected, found):.2f} px off"
        if not has_plain_letters(text):
            continue
        left, top, right, bottom = bounds(found["points"])
        if left < -0.5 or top < -0.5 or right > scene["width"] + 0.5 or bottom > scene["height"] + 0.5:
            yield f"text {text!r} leaves the picture"
        texts.append((text, found["points"]))
    texts.sort(key=lambda text: bounds(text[1])[1])
    for i, (text, points) in enumerate(texts):
        for other, others in texts[i + 1:]:
            if bounds(others)[1] > bounds(points)[3]:
                break
            if not apart(points, others, 1) and not apart(others, points, 1):
                yield f"texts {text!r} and {other!r} overlap"
    tips = {mark["tip"] for mark in scene["marks"] if mark["tip"]}
    if picture["stops"] and len(picture["stops"]) != len(tips):
        yield f"{len(picture['stops'])} tab stops in place of {len(tips)}"
    for stop in picture["stops"]:
        if not all(stop.values()):
            yield f"the tab stop {stop} lacks something"


def keyboard_complaints(browser):
    """The tab key goes from a picture's frame to its first mark and on to the next."""
    browser.run("document.querySelector('.chart > .scroll:has([tabindex])')?.focus()")
    names = []
    for _ in range(2):
        browser.press_tab()
        names.append(browser.run(
            "return document.activeElement.closest('.c-m:focus-visible')?.ariaLabel ?? ''"))
    if not all(names) or names[0] == names[1]:
        yield f"the tab key reaches {names}"


def check(page, scenes, browser):
    found = measured = 0
    for key, width in (("wide", 1280), ("narrow", 390)):
        browser.open(page, width)
        for number, scene in enumerate(scenes, 1):
            picture = browser.run(MEASURE, f"c{number}{key[0]}t")
            if picture is None:  # large pictures are drawn once
                continue
            measured += 1
            for complaint in complaints(scene[key], picture):
                print(f"{scene['name']}, {key}: {complaint}")
                found += 1
        for complaint in keyboard_complaints(browser) if key == "wide" else ():
            print(complaint)
            found += 1
    if measured < len(scenes):
        print(f"{measured} pictures were measured, of {len(scenes)} charts")
        found += 1
    return found


def main():
    page = pathlib.Path(sys.argv[1])
    scenes = json.loads(pathlib.Path(sys.argv[2]).read_text(encoding="utf-8"))
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        try:
            return 1 if check(page, scenes, browser) else 0
        finally:
            browser.close()


if __name__ == "__main__":
    sys.exit(main())
