#!/usr/bin/python3
"""The page in a real browser: Chromium without a window, opened from its file, as people do.

    browser.py PAGE LMX [unittest's arguments]

LMX is the command-line tool, whose results the page's must equal. Screenshots go to the folder screens beside the page.
The interpreter is Debian's, which has Selenium.
"""
import hashlib
import json
import os
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
import zlib

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.chrome.service import Service

PAGE = pathlib.Path(sys.argv[1]).resolve()
LMX = pathlib.Path(sys.argv[2]).resolve()
SCREENS = PAGE.parent / "screens"
PATIENCE = 60


def png(width, height, rows, colour_type=6, depth=8):
    """The bytes of a PNG file; a row is the bytes of its pixels."""
    def chunk(name, content):
        return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))
    header = struct.pack(">IIBBBBB", width, height, depth, colour_type, 0, 0, 0)
    packer = zlib.compressobj(6)
    packed = b"".join(packer.compress(b"\0" + row) for row in rows) + packer.flush()
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", packed) + chunk(b"IEND", b"")


def noise(width, height, seed=1):
    """Pixels with every alpha, those of alpha 0 without colour."""
    source = random.Random(seed)
    rows = []
    for _ in range(height):
        row = bytearray(source.randbytes(4 * width))
        for i in range(0, len(row), 4):
            if row[i + 3] == 0:
                row[i:i + 3] = b"\0\0\0"
        rows.append(bytes(row))
    return rows


def pixels_of(file):
    """The straight pixels of a picture file, red, green, blue, alpha."""
    return subprocess.run(["convert", file, "-depth", "8", "rgba:-"], check=True, capture_output=True).stdout


def file_url(fragment=""):
    return PAGE.as_uri() + (f"#{fragment}" if fragment else "")


class Browser(unittest.TestCase):
    """One browser for all cases of a class; each case begins with a fresh page."""

    width, height, dark, mobile = 1360, 860, False, False

    @classmethod
    def setUpClass(cls):
        SCREENS.mkdir(exist_ok=True)
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="lmx-playground-"))
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--enable-unsafe-swiftshader",
                         f"--user-data-dir={cls.folder}/profile", "--hide-scrollbars"):
            options.add_argument(argument)
        options.add_experimental_option("prefs", {"download.default_directory": str(cls.folder / "downloads")})
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.driver = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
        cls.driver.set_script_timeout(PATIENCE)
        cls.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": cls.width, "height": cls.height, "deviceScaleFactor": 2 if cls.mobile else 1, "mobile": cls.mobile})
        scheme = {"name": "prefers-color-scheme", "value": "dark" if cls.dark else "light"}
        cls.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [scheme]})

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def setUp(self):
        self.driver.get("about:blank")
        self.driver.get(file_url())
        self.wait("return Boolean(window.playground)")
        shutil.rmtree(self.folder / "downloads", ignore_errors=True)

    def tearDown(self):
        severe = [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]
        self.assertEqual(severe, [], "the browser's console")

    # ---- What cases say ----

    def js(self, code, *arguments):
        return self.driver.execute_script(code, *arguments)

    def wait(self, code, *arguments, message=None):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            value = self.js(code, *arguments)
            if value:
                return value
            time.sleep(0.02)
        self.fail(message or f"waited for: {code}")

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def click(self, selector):
        self.find(selector).click()

    def text(self, selector):
        return self.js("return document.querySelector(arguments[0]).textContent", selector)

    def settled(self):
        """Until the newest run is shown."""
        self.wait("const p = window.playground; return p.image && !p.engine.isBusy && p.job && p.job.steps === p.chain.steps"
                  " && p.job.storage === p.chain.storage && document.getElementById('busy').hidden")

    def chart(self):
        self.click("#take-chart")
        self.settled()

    def open(self, fragment):
        """A link, in a fresh page."""
        self.driver.get("about:blank")
        self.driver.get(file_url(fragment))
        self.wait("return Boolean(window.playground)")
        self.settled()

    def choose(self, *files):
        self.find("#file").send_keys("\n".join(str(file) for file in files))

    def line(self):
        return self.text("#code")

    def tab(self, name):
        self.click(f"#tab-{name}")
        return self.text("#code")

    def field(self, argument):
        label = self.driver.find_element(By.XPATH, f"//li[contains(@class,'active')]//label[.='{argument}']")
        return self.driver.find_element(By.ID, label.get_attribute("for"))

    def slider(self, argument):
        return self.field(argument).find_element(By.XPATH, "./ancestor::div[contains(@class,'slide')]//input[@type='range']")

    def type(self, argument, text):
        self.field(argument).click()
        self.field(argument).send_keys(text)

    def shown(self):
        """The shown result: width, height and the hash of its straight pixels."""
        return self.driver.execute_async_script("""
            const done = arguments[0], after = window.playground.view.after;
            if (!after) { done(null); return; }
            crypto.subtle.digest('SHA-256', after.data).then((hash) => done([after.width, after.height,
              [...new Uint8Array(hash)].map((b) => b.toString(16).padStart(2, '0')).join('')]));""")

    def screen(self, name):
        time.sleep(0.25)
        self.driver.save_screenshot(str(SCREENS / f"{name}.png"))

    def run_command(self, command):
        """Runs a command line of lmx as a shell does, beside the chart; gives what it prints."""
        folder = self.folder / "shell"
        folder.mkdir(exist_ok=True)
        if not (folder / "chart.png").exists():
            subprocess.run([LMX, "chart", "-o", folder / "chart.png"], check=True)
        environment = {**os.environ, "PATH": f"{LMX.parent}:{os.environ['PATH']}"}
        result = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 0, f"{command}\n{result.stderr}")
        return result.stdout

    def expect_same_as_command(self, command):
        out = self.folder / "shell" / "out.png"
        out.unlink(missing_ok=True)
        self.run_command(command)
        width, height, _ = self.shown()
        expected = hashlib.sha256(pixels_of(out)).hexdigest()
        size = subprocess.run(["identify", "-format", "%w %h", out], check=True, capture_output=True, text=True).stdout
        self.assertEqual([f"{width} {height}", expected], [size, self.shown()[2]], command)

    def download(self, name):
        file = self.folder / "downloads" / name
        end = time.monotonic() + PATIENCE
        while not file.exists():
            self.assertLess(time.monotonic(), end, f"waited for {name}")
            time.sleep(0.05)
        return file


    def unreadable(self):
        """Texts whose contrast is too low: 4.5 to 1, or 3 to 1 where they are large."""
        return self.js("""
            const parse = (text) => (text.match(/[\\d.]+/g) ?? []).map(Number);
            const isColour = (text) => text.startsWith('rgb');
            const light = ([r, g, b]) => [r, g, b].map((c) => (c /= 255) <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
              .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
            const groundOf = (element) => {
              for (let e = element; e; e = e.parentElement) {
                const colour = parse(getComputedStyle(e).backgroundColor);
                if (colour.length && (colour[3] ?? 1) > 0.9) return colour;
              }
              return null;
            };
            const low = [];
            for (const element of document.querySelectorAll('body *')) {
              const ownText = [...element.childNodes].some((n) => n.nodeType === 3 && n.textContent.trim());
              const box = element.getBoundingClientRect(), style = getComputedStyle(element);
              if (!(ownText || element.matches('input[type=text]')) || !box.width || style.visibility === 'hidden') continue;
              if (element.closest('.unseen, :disabled, script, style, [aria-hidden=true]') || !isColour(style.color)) continue;
              const ground = groundOf(element);
              if (!ground) continue;
              const [a, b] = [light(parse(style.color)), light(ground)].sort((x, y) => y - x);
              const size = parseFloat(style.fontSize), isLarge = size >= 24 || (size >= 18.66 && style.fontWeight >= 700);
              const ratio = (a + 0.05) / (b + 0.05);
              if (ratio < (isLarge ? 3 : 4.5)) low.push(`${element.tagName} ${element.className} "${element.textContent.slice(0, 30)}" ${ratio.toFixed(2)}`);
            }
            return low;""")


class Results(Browser):
    """The same pixels as by lmx."""

    CALLS = [
        "AdjustHSV:hue_degrees=77", "AdjustHSV:left=100,top=50,width=300,height=200,saturation_factor=3,brightness_factor=2",
        "AdjustHSV_InPlace:hue_degrees=-20,width=400", "AdjustRGB:red_delta=60,green_delta=-10", "AdjustRGB_InPlace:top=90,blue_delta=99",
        "FlipRotate:flip_h=true,rotation=90", "FlipRotate:flip_v=yes,rotation=270", "FreeRotateByShear:rotation=33.3",
        "FreeRotateByShear:rotation=200", "ShearHorizontal:shear=-0.3,frame_color=2a6f97", "ShearVertical:shear=0.777,frame_color=e4572e80",
        "Stretch:width=1200", "Stretch:width=99,height=300", "Trim:left=-40,top=60,width=400,height=500",
        "MakeGradient:width=300,height=200,color1=ff8800,color2=0044ff80", "MakeDoubleGradient:height=301,color2=12345678",
        "AdjustHSV:negative=true",
    ]

    def test_every_method_in_both_storage_forms(self):
        for call in self.CALLS:
            for storage in ("", "/@buffer"):
                with self.subTest(call + storage):
                    self.open(f"{call}{storage}/@chart")
                    self.expect_same_as_command(self.tab("lmx"))

    def test_averages_and_messages(self):
        for call, words in (("GetAverageRGB", ("red", "green", "blue")), ("GetAverageHSV:width=200", ("hue_degrees", "saturation", "brightness"))):
            self.open(f"{call}/@chart")
            command = self.tab("lmx")
            expected = json.loads(self.run_command(f"{command} --json"))["results"]
            shown = self.js("return window.playground.reports[0].outputs")
            self.assertEqual(shown, expected)
            for word in words:
                self.assertIn(word, self.text(".card .average"))
        self.screen("averages")
        self.open("GetErrorMessage:errorCode=33/@chart")
        self.assertEqual(self.text(".card .value"), self.run_command(self.tab("lmx")).strip())
        self.assertEqual(self.text("#words"), self.text(".card .value"))
        self.screen("message")

    def test_chain(self):
        self.open("Trim:left=100,top=80,width=500,height=300/FreeRotateByShear:rotation=12.5/AdjustHSV:hue_degrees=60/"
                  "Stretch:width=400/GetAverageRGB/@chart")
        command = self.tab("lmx")
        self.assertEqual(command.count(" + "), 4)
        self.expect_same_as_command(command)
        self.screen("chain")


class Work(Browser):
    """What people do."""

    def test_first_screen_and_test_chart(self):
        self.screen("landing")
        self.assertIn("Nothing leaves this machine", self.text("#landing"))
        self.chart()
        self.assertEqual(self.line(), "result = p.LMX_FreeRotateByShear(12.5, &hFF000000, 0)")
        self.screen("chart")

    def test_drop(self):
        rows = noise(40, 30)
        data = list(png(40, 30, rows))
        self.js("""
            const transfer = new DataTransfer();
            transfer.items.add(new File([new Uint8Array(arguments[0])], 'dropped.png', { type: 'image/png' }));
            for (const name of ['dragenter', 'dragover', 'drop']) {
              document.body.dispatchEvent(new DragEvent(name, { dataTransfer: transfer, bubbles: true, cancelable: true }));
            }""", data)
        self.settled()
        self.assertIn("dropped.png · 40 × 30", self.text("#picture-name"))

    def test_paste(self):
        data = list(png(7, 5, noise(7, 5)))
        self.js("""
            const transfer = new DataTransfer();
            transfer.items.add(new File([new Uint8Array(arguments[0])], 'image.png', { type: 'image/png' }));
            window.dispatchEvent(new ClipboardEvent('paste', { clipboardData: transfer }));""", data)
        self.settled()
        self.assertIn("7 × 5", self.text("#picture-name"))

    def test_translucent_pixels_are_read_exactly(self):
        rows = noise(300, 200)
        file = self.folder / "noise.png"
        file.write_bytes(png(300, 200, rows))
        self.choose(file)
        self.settled()
        read = self.js("return [window.playground.image.exact, [...window.playground.image.data]]")
        self.assertTrue(read[0])
        self.assertEqual(bytes(read[1]), b"".join(rows))

    def test_gallery_keyboard_and_focus(self):
        self.chart()
        self.find("body").send_keys("m")
        self.wait("return document.getElementById('gallery').open")
        self.screen("gallery")
        methods = subprocess.run([LMX, "list"], check=True, text=True, stdout=subprocess.PIPE).stdout.splitlines()
        self.assertEqual(sorted(b.get_attribute("data-method") for b in self.driver.find_elements(By.CSS_SELECTOR, ".choice")),
                         sorted(line.split()[0] for line in methods))
        self.assertEqual([b.get_attribute("data-method") for b in self.driver.find_elements(By.CSS_SELECTOR, ".choice:disabled")],
                         ["LMX_MakeGradient", "LMX_MakeDoubleGradient", "LMX_GetLastError", "LMX_GetErrorMessage"])
        self.find("[data-method=LMX_AdjustRGB]").send_keys(Keys.ENTER)
        self.settled()
        self.assertEqual(self.line().count("\n"), 1)

    def test_slider_and_field(self):
        self.chart()
        slider = self.slider("rotation")
        before = self.shown()
        slider.send_keys(Keys.ARROW_RIGHT)
        self.settled()
        self.assertIn("(13.0, ", self.line())
        self.assertNotEqual(self.shown(), before)
        self.assertEqual(self.field("rotation").get_attribute("value"), "13")

        # The field selects itself, takes what is typed as it is, and shows on the way.
        self.type("rotation", "4")
        self.assertEqual(self.field("rotation").get_attribute("value"), "4")
        self.field("rotation").send_keys("5.")
        self.settled()
        self.assertEqual(self.field("rotation").get_attribute("value"), "45.")
        self.assertIn("(45.0, ", self.line())
        self.field("rotation").send_keys("x")
        self.assertEqual(self.field("rotation").get_attribute("aria-invalid"), "true")
        self.assertIn("(45.0, ", self.line())
        self.field("rotation").send_keys(Keys.TAB)
        self.assertEqual(self.field("rotation").get_attribute("value"), "45")
        self.assertEqual(self.field("rotation").get_attribute("aria-invalid"), "false")
        self.type("rotation", Keys.ARROW_UP)
        self.settled()
        self.assertIn("(45.5, ", self.line())

    def test_error_is_shown_as_the_program_gets_it(self):
        self.open("FlipRotate:rotation=90/@chart")
        self.type("rotation", "360")
        self.settled()
        message = 'Rotate Error: "rotation" parameter is out of bounds'
        self.assertEqual(self.text("#banner"), f"Error 31{message}")
        self.assertIn(f"31 · {message}", self.text("#facts"))
        self.assertFalse(self.find("#download").is_enabled())
        self.screen("error")
        self.field("rotation").send_keys(Keys.CONTROL, "a")
        self.field("rotation").send_keys("180")
        self.settled()
        self.assertFalse(self.find("#banner").is_displayed())

    def test_arguments_out_of_range_typed_by_hand(self):
        for argument, text in (("width", "0"), ("width", "65536"), ("width", "-5"), ("height", "2147483647")):
            self.open("Stretch:width=100/@chart")
            self.type(argument, text)
            self.settled()
            self.assertRegex(self.text("#banner"), "^Error 3[45]Stretch Error")
        self.type("height", "99999999999")
        self.assertEqual(self.field("height").get_attribute("aria-invalid"), "true")
        for text in ("nan", "inf", "-1"):
            self.open("FreeRotateByShear:rotation=10/@chart")
            self.type("rotation", text)
            self.settled()
            self.assertEqual(self.find("#banner").is_displayed(), text != "nan")

    def test_selection_by_mouse(self):
        self.open("AdjustRGB:red_delta=90/@chart")
        self.click(".area summary")
        self.click(".area .toggle")
        self.find("body").send_keys("1")
        place = self.wait("""const v = window.playground.view, pane = v.panes.at(-1), o = v.origin(pane);
            return v.scale === 1 && [o.x + v.after.left, o.y + v.after.top]""")
        def to(actions, x, y):
            return actions.move_to_element_with_offset(self.find("#stage"), place[0] + x - self.width // 2, place[1] + y - self.height // 2)
        actions = ActionChains(self.driver, duration=50)
        to(to(actions, 430, 120).click_and_hold(), 590, 260).release().perform()
        self.settled()
        self.assertIn("AdjustRGB(430, 120, 160, 140, 90", self.line())
        self.expect_same_as_command(self.tab("lmx"))
        # Moved as a whole, then by its lower right corner.
        actions = ActionChains(self.driver, duration=50)
        to(to(actions, 500, 200).click_and_hold(), 510, 205).release().perform()
        self.settled()
        self.tab("line")
        self.assertIn("AdjustRGB(440, 125, 160, 140, 90", self.line())
        actions = ActionChains(self.driver, duration=50)
        to(to(actions, 601, 266).click_and_hold(), 631, 276).release().perform()
        self.settled()
        self.assertIn("AdjustRGB(440, 125, 190, 150, 90", self.line())
        self.screen("selection")

    def test_trim_by_mouse(self):
        self.open("FlipRotate:flip_h=true/Trim:left=100,top=100,width=200,height=100/@chart")
        self.click(".area .toggle")
        self.settled()
        self.assertEqual(self.shown()[:2], [761, 507])  # what is trimmed, not what comes out
        self.screen("trim")
        self.click(".area .toggle")
        self.settled()
        self.assertEqual(self.shown()[:2], [200, 100])

    def test_calls_are_added_moved_removed_undone(self):
        self.open("FlipRotate:rotation=90/Stretch:width=100/@chart")
        one = self.line()
        self.click("[aria-label='Move call 2 up']")
        self.settled()
        other = self.line()
        self.assertEqual([line.split("(")[0] for line in other.split("\n")], ["result = p.LMX_Stretch", "result = result.LMX_FlipRotate"])
        self.expect_same_as_command(self.tab("lmx"))
        self.tab("line")
        self.click("[aria-label='Remove call 1']")
        self.settled()
        self.assertEqual(self.line(), "result = p.LMX_FlipRotate(False, False, 90, 0)")
        self.find("body").send_keys(Keys.CONTROL, "z")
        self.settled()
        self.assertEqual(self.line(), other)
        self.find("body").send_keys(Keys.CONTROL, "z")
        self.settled()
        self.assertEqual(self.line(), one)
        self.find("body").send_keys(Keys.CONTROL, Keys.SHIFT, "z")
        self.settled()
        self.assertEqual(self.line(), other)

    def test_copy(self):
        self.chart()
        self.click("#copy")
        self.wait("return document.getElementById('copy').textContent === 'Copied'")
        self.js("document.body.insertAdjacentHTML('beforeend', '<textarea id=here style=\"position:fixed;z-index:99;top:0\"></textarea>')")
        self.find("#here").send_keys(Keys.CONTROL, "v")
        self.assertEqual(self.find("#here").get_property("value"), self.line())

    def test_link(self):
        self.open("FlipRotate:rotation=90/@chart")
        self.type("rotation", "180")
        self.field("rotation").send_keys(Keys.TAB)
        self.click("#storage label:last-child")
        self.settled()
        address = self.driver.current_url
        self.assertTrue(address.endswith("#FlipRotate:rotation=180/@buffer/@chart"), address)
        line, shown = self.line(), self.shown()
        self.open(address.split("#")[1])
        self.assertEqual([self.line(), self.shown()], [line, shown])

    def test_download(self):
        self.open("FreeRotateByShear:rotation=30/@chart")
        self.click("#download")
        file = self.download("chart-FreeRotateByShear.png")
        self.assertEqual(hashlib.sha256(pixels_of(file)).hexdigest(), self.shown()[2])

    def test_several_pictures(self):
        files = []
        for i, size in enumerate(((60, 40), (30, 90))):
            folder = self.folder / str(i)
            folder.mkdir(exist_ok=True)
            files.append(folder / "a.png")
            files[-1].write_bytes(png(*size, noise(*size, seed=i)))
        broken = self.folder / "broken.png"
        broken.write_bytes(b"no picture")
        self.choose(*files, broken)
        self.settled()
        self.click("[aria-label='Remove call 1']")
        self.js("window.playground.change({ ...window.playground.chain, steps: [{ method: 'LMX_FlipRotate', given: { rotation: 90 } }] }, true)")
        self.settled()
        self.screen("several")
        self.click("#strip button:nth-child(2)")
        self.wait("return window.playground.image.width === 30")
        self.settled()
        self.assertEqual(self.shown()[:2], [90, 30])
        self.click("#strip .all")
        archive = zipfile.ZipFile(self.download("lmx.zip"))
        self.assertIsNone(archive.testzip())
        self.assertEqual(archive.namelist(), ["a-FlipRotate.png", "a-FlipRotate 2.png"])
        self.assertIn("broken.png", self.text("#toast"))
        for name, file in zip(archive.namelist(), files):
            archive.extract(name, self.folder)
            subprocess.run([LMX, "FlipRotate", file, "rotation=90", "-o", self.folder / "expected.png"], check=True)
            self.assertEqual(pixels_of(self.folder / name), pixels_of(self.folder / "expected.png"))

    def test_view(self):
        self.chart()
        scale = "return window.playground.view.scale"
        self.find("body").send_keys("1")
        self.assertEqual(self.js(scale), 1)
        for _ in range(20):
            self.find("body").send_keys("+")
        self.assertEqual(self.js(scale), 32)
        self.screen("pixels")
        for _ in range(20):
            self.find("body").send_keys("-")
        self.assertEqual(self.js(scale), 0.25)
        self.find("body").send_keys("f")
        self.wait("return window.playground.view.zoom === 'fit'")
        divider = self.find("#divider")
        divider.send_keys(Keys.HOME)
        self.assertEqual(self.js("return window.playground.view.split"), 0)
        ActionChains(self.driver).double_click(self.find("#stage")).perform()
        self.wait("return window.playground.view.split === 0.5 && document.getElementById('divider').ariaValueNow === '50'")
        ActionChains(self.driver, duration=50).drag_and_drop_by_offset(divider, 100, 0).perform()
        self.assertGreater(self.js("return window.playground.view.split"), 0.55)
        self.find("body").send_keys("s")
        self.screen("side-by-side")
        self.find("body").send_keys("d")
        self.find("body").send_keys("x")
        self.wait("return document.getElementById('divider').dataset.left === 'After'")
        self.find("body").send_keys("x")

    def test_loupe(self):
        self.open("AdjustRGB:red_delta=90/@chart")
        self.find("body").send_keys("1", "l")
        ActionChains(self.driver, duration=50).move_to_element_with_offset(self.find("#stage"), 40, -120).perform()
        place = self.wait("const t = document.querySelector('.loupe-text'); return t.children.length === 3 && t.innerText")
        self.screen("loupe")
        x, y = (int(n) for n in place.split("\n")[0].removeprefix("Place").split(","))
        pixel = self.js("const a = window.playground.view.after; return [...a.data.slice(4 * (arguments[1] * a.width + arguments[0])).slice(0, 4)]", x, y)
        self.assertIn(f"{pixel[0]} {pixel[1]} {pixel[2]} · α {pixel[3]}", place)

    def test_cancel_of_a_long_call(self):
        file = self.folder / "large.png"
        file.write_bytes(png(6000, 4000, (bytes(6000) for _ in range(4000)), colour_type=0))
        self.choose(file)
        self.wait("return window.playground.image && window.playground.image.width === 6000")
        self.settled()
        self.type("rotation", "33")
        self.wait("return !document.getElementById('busy').hidden && document.getElementById('busy-text').textContent === 'FreeRotateByShear'")
        self.screen("progress")
        self.click("#cancel")
        self.wait("return document.getElementById('banner').textContent.startsWith('Cancelled')")
        self.click("#storage label:last-child")
        self.settled()
        self.assertEqual(self.find("#banner").text, "")
        self.assertIn("0 · General Error: No Error", self.text("#facts"))

    def test_averages_of_very_many_pixels(self):
        file = self.folder / "many.png"
        file.write_bytes(png(3000, 3000, (b"\xff" * 3000 for _ in range(3000)), colour_type=0))
        self.choose(file)
        self.wait("return window.playground.image && window.playground.image.width === 3000")
        self.settled()
        self.js("window.playground.change({ ...window.playground.chain, steps: [{ method: 'LMX_GetAverageRGB', given: {} }] }, true)")
        self.settled()
        self.assertIn("Beyond 8,421,504", self.text(".card .warning"))

    def test_every_control_has_a_name(self):
        self.open("ShearVertical:shear=0.2/Trim:left=10,top=10,width=99,height=99/@chart")
        self.driver.execute_cdp_cmd("Accessibility.enable", {})
        nodes = self.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        nameless = []
        for node in nodes:
            role = node.get("role", {}).get("value")
            if node.get("ignored") or role not in ("button", "slider", "textbox", "checkbox", "switch", "radio", "tab", "ColorWell"):
                continue
            if not node.get("name", {}).get("value"):
                nameless.append(role)
        self.assertEqual(nameless, [])

    def test_texts_have_contrast(self):
        self.assertEqual(self.unreadable(), [])
        self.open("GetAverageRGB/ShearVertical:shear=2/@chart")
        self.assertEqual(self.unreadable(), [])
        self.open("Trim:left=10,top=10,width=99,height=99/FreeRotateByShear:rotation=3/@chart")
        self.tab("example")
        self.click("[aria-label='Change the method of call 2']")
        self.assertEqual(self.unreadable(), [])


class BadInput(Browser):
    """A clear message, never a dead page."""

    def refuse(self, name, content, message):
        file = self.folder / name
        file.write_bytes(content)
        self.choose(file)
        self.wait("return document.getElementById('toast').textContent.includes(arguments[0])", message)

    def test_what_cannot_be_read(self):
        good = png(200, 100, noise(200, 100))
        self.refuse("text.txt", b"hello", "no picture that the browser can read")
        self.refuse("damaged.png", good[:40], "no picture that the browser can read")
        self.refuse("empty.jpg", b"", "no picture that the browser can read")
        self.assertTrue(self.find("#landing").is_displayed())
        self.refuse("vast.png", png(10000, 10000, (bytes(1250) for _ in range(10000)), colour_type=0, depth=1), "100 megapixels")
        self.chart()
        self.refuse("again.png", good[:60], "no picture that the browser can read")
        self.assertIn("chart.png", self.text("#picture-name"))
        self.type("rotation", "20")
        self.settled()

    def test_odd_sizes(self):
        for width, height in ((1, 1), (20000, 1), (1, 20000), (4097, 3)):
            file = self.folder / "odd.png"
            file.write_bytes(png(width, height, noise(width, height)))
            self.choose(file)
            self.wait("const i = window.playground.image; return i && i.width === arguments[0] && i.height === arguments[1]", width, height)
            for step in ("LMX_FlipRotate", "LMX_AdjustHSV", "LMX_Stretch", "LMX_ShearHorizontal", "LMX_GetAverageHSV"):
                self.js("window.playground.change({ ...window.playground.chain, steps: [{ method: arguments[0], given: {} }] }, true, 0)", step)
                self.settled()
                self.assertTrue(self.text("#facts").endswith("0 · General Error: No Error"), f"{step} {width} x {height}")
            self.js("""window.playground.change({ ...window.playground.chain,
                steps: [{ method: 'LMX_FlipRotate', given: { rotation: 90 } }] }, true, 0)""")
            self.settled()
            self.assertEqual(self.shown()[:2], [height, width])

    def test_a_result_for_which_there_is_no_memory(self):
        self.open("Stretch:width=65000,height=65000/@chart")
        self.assertTrue(self.find("#banner").is_displayed())
        self.type("width", "30")
        self.type("height", "20")
        self.settled()
        self.assertEqual(self.shown()[:2], [30, 20])


class Phone(Browser):
    width, height, mobile = 390, 844, True

    def test_everything_is_within_reach(self):
        self.screen("phone-landing")
        self.chart()
        self.screen("phone")
        self.assertLessEqual(self.js("return document.documentElement.scrollWidth"), 390)
        outside = self.js("""return [...document.querySelectorAll('button, input, a')].filter((element) => {
            const box = element.getBoundingClientRect();
            return box.width && getComputedStyle(element).opacity !== '0' && (box.left < 0 || box.right > 390.5);
        }).map((element) => element.outerHTML.slice(0, 90))""")
        self.assertEqual(outside, [])
        self.type("rotation", "45")
        self.settled()
        self.assertIn("(45.0, ", self.line())
        self.click("#add")
        self.wait("return document.getElementById('gallery').open")
        self.screen("phone-gallery")
        self.find("[data-method=LMX_AdjustHSV]").click()
        self.settled()
        self.assertEqual(self.line().count("\n"), 1)
        self.screen("phone-chain")


class Dark(Browser):
    dark = True

    test_texts_have_contrast = Work.test_texts_have_contrast

    def test_screens(self):
        self.screen("dark-landing")
        self.open("FreeRotateByShear:rotation=12.5/AdjustHSV:hue_degrees=60/@chart")
        self.tab("example")
        self.screen("dark")
        self.open("ShearHorizontal:shear=0.3,frame_color=17a3a0/@chart")
        self.screen("dark-shear")
        self.find("body").send_keys("m")
        self.wait("return document.getElementById('gallery').open")
        self.screen("dark-gallery")


class Readme(Browser):
    """The picture of the first page, docs/pictures/playground.png."""

    width, height = 1200, 740

    def test_screen(self):
        self.open("FreeRotateByShear:rotation=12.5/AdjustHSV:hue_degrees=60/@chart")
        self.screen("readme")


class File(unittest.TestCase):
    def test_it_is_complete_in_itself(self):
        text = PAGE.read_text(encoding="utf-8")
        self.assertLess(PAGE.stat().st_size, 1000000)
        for word in (' src="', "<link rel=\"stylesheet", "@import", "fetch(", "XMLHttpRequest", "/* insert "):
            self.assertNotIn(word, text)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
