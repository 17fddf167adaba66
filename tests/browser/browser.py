"""A headless Chromium for pages on disk, and the questions that tests ask about them."""

import base64
import contextlib
import json
import pathlib

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

FLAGS = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
         "--force-device-scale-factor=1", "--window-size=1280,900")


class Browser:
    """Opens pages in one Chromium."""

    def __init__(self):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for flag in FLAGS:
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

    def open(self, path, width=1280, height=900):
        """Opens a page. Forgets what was logged before."""
        self.driver.set_window_size(width, height)
        self.driver.get_log("browser")
        self.driver.get_log("performance")
        self.url = pathlib.Path(path).resolve().as_uri()
        self.driver.get(self.url)

    def complaints(self):
        """Returns what the console has of errors and warnings."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self):
        """Returns the addresses that the page asked for, itself excepted."""
        messages = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        asked = [m["params"]["request"]["url"] for m in messages if m["method"] == "Network.requestWillBeSent"]
        return [address for address in asked if address != self.url]

    def run(self, script, *arguments):
        """Runs a script in the page and returns its value."""
        return self.driver.execute_script(script, *arguments)

    def cdp(self, command, **arguments):
        return self.driver.execute_cdp_cmd(command, arguments)

    def print_to_pdf(self):
        return base64.b64decode(self.cdp("Page.printToPDF", printBackground=True, preferCSSPageSize=True)["data"])

    def screenshot(self, path, height=None):
        """Takes a picture of the page, or of its upper part."""
        size = self.run("return [document.documentElement.clientWidth, document.documentElement.scrollHeight]")
        clip = {"x": 0, "y": 0, "width": size[0], "height": height or size[1], "scale": 1}
        shot = self.cdp("Page.captureScreenshot", captureBeyondViewport=True, clip=clip)
        pathlib.Path(path).write_bytes(base64.b64decode(shot["data"]))

    @contextlib.contextmanager
    def scheme(self, name):
        """Shows pages in the colours "light" or "dark"."""
        self.cdp("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": name}])
        yield
        self.cdp("Emulation.setEmulatedMedia", features=[])

    @contextlib.contextmanager
    def without_scripts(self):
        """Opens pages with scripts switched off."""
        self.cdp("Emulation.setScriptExecutionDisabled", value=True)
        yield
        self.cdp("Emulation.setScriptExecutionDisabled", value=False)

    def close(self):
        self.driver.quit()
