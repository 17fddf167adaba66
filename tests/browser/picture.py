#!/usr/bin/python3
"""Takes a picture of a page: picture.py PAGE PICTURE"""

import sys

from browser import Browser

browser = Browser()
browser.open(sys.argv[1], 1200, 900)
browser.screenshot(sys.argv[2], height=1560)
browser.close()
