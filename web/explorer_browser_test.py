#!/usr/bin/python3
"""The explorer in a real browser: headless Chromium, driven by Selenium,
against `refgrove serve` on the sample.

It checks the front page's charts, lists and cluster map against
/api/overview and /api/clusters, opens a cluster from the map and checks its
timeline drawing against /api/cluster, checks an author's h-index and chart,
searches a word, opens a result, checks that the neighbourhood drawing holds
the papers that /api/neighbourhood gives, follows a node to its paper, finds
a collaboration path from an author, and sees no error in the browser's
console. Screenshots of each step are kept in SHOT_DIR (a failing
run leaves them there to be looked at).

Usage: explorer_browser_test.py REFGROVE SAMPLE_DIR SHOT_DIR
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.parse
import urllib.request

from selenium import webdriver
from selenium.common.exceptions import StaleElementReferenceException, TimeoutException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support import expected_conditions as ec
from selenium.webdriver.support.ui import WebDriverWait

TIMEOUT = 20  # seconds for any one thing to appear


def start_server(refgrove, sample, work):
    data = os.path.join(work, "data")
    subprocess.run([refgrove, "preprocess", sample, data], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    server = subprocess.Popen([refgrove, "serve", data, "--port", "0"], stdout=subprocess.PIPE, text=True)
    line = server.stdout.readline()
    match = re.search(r"http://127\.0\.0\.1:\d+/", line)
    if not match:
        server.kill()
        sys.exit(f"refgrove serve did not print its URL: {line!r}")
    return server, match.group(0)


def start_browser(work):
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for flag in ("--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 "--no-first-run", "--window-size=1280,1000", f"--user-data-dir={work}/profile"):
        options.add_argument(flag)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class ExplorerCheck:
    def __init__(self, browser, url, shot_dir):
        self.browser, self.url, self.shot_dir = browser, url, shot_dir
        self.wait = WebDriverWait(browser, TIMEOUT)
        self.step = 0

    def api(self, path):
        url = self.url + "api/" + urllib.parse.quote(path, safe="/?&=*")
        with urllib.request.urlopen(url, timeout=TIMEOUT) as response:
            return json.load(response)

    def shot(self, name):
        self.step += 1
        self.browser.save_screenshot(os.path.join(self.shot_dir, f"{self.step}-{name}.png"))

    def heading_is(self, text):
        self.wait.until(ec.text_to_be_present_in_element((By.CSS_SELECTOR, "main h1"), text))

    def drawn_dids(self):
        self.wait.until(ec.presence_of_element_located((By.CSS_SELECTOR, "#graph circle")))
        return {int(c.get_attribute("data-did")) for c in self.browser.find_elements(By.CSS_SELECTOR, "#graph circle")}

    def search_and_open(self, word):
        self.browser.get(self.url)
        self.heading_is("refgrove explorer")
        box = self.browser.find_element(By.ID, "search-input")
        box.send_keys(word)
        box.submit()
        expected = self.api(f"search?q={word}&mode=and&limit=50")["hits"]
        assert expected, f"the sample has no hit for {word}"
        # The front page lists papers too (the most cited): wait until the
        # list shown is the search's, then take its first link.
        wanted = [h["did"] for h in expected]

        def shown(browser):
            try:
                return [int(li.get_attribute("data-did")) for li in browser.find_elements(By.CSS_SELECTOR, "ol.papers li")]
            except StaleElementReferenceException:  # replaced while read: look again
                return None

        try:
            self.wait.until(lambda browser: shown(browser) == wanted)
        except TimeoutException:
            raise AssertionError(f"results {shown(self.browser)}, API {wanted}") from None
        self.shot("search")
        first = self.wait.until(ec.element_to_be_clickable((By.CSS_SELECTOR, "ol.papers li a")))
        first.click()
        self.heading_is(expected[0]["title"])
        return expected[0]["did"]

    def check_drawing(self, did):
        expected = {n["did"] for n in self.api(f"neighbourhood/{did}?hops=1&direction=both&limit=150")["nodes"]}
        drawn = self.drawn_dids()
        self.shot("neighbourhood")
        assert drawn == expected, f"drawn {sorted(drawn)}, API {sorted(expected)}"
        return drawn

    def follow_node(self, did, drawn):
        other = min(drawn - {did})
        node = self.browser.find_element(By.CSS_SELECTOR, f'#graph circle[data-did="{other}"]')
        # The layout may still move the node: dispatch the click on it.
        self.browser.execute_script("arguments[0].dispatchEvent(new MouseEvent('click', {bubbles: true}))", node)
        self.heading_is(self.api(f"paper/{other}")["title"])
        self.drawn_dids()
        self.shot("followed")

    def find_path(self, from_name, to_name):
        author = self.api(f"search?q={from_name}&limit=1")["authors"][0]
        target = self.api(f"search?q={to_name}&limit=1")["authors"][0]
        expected = self.api(f"path?from={author['id']}&to={target['id']}")
        self.browser.get(f"{self.url}#/author/{author['id']}")
        self.heading_is(author["name"])
        box = self.browser.find_element(By.ID, "path-to")
        box.send_keys(to_name)
        box.submit()
        self.wait.until(ec.presence_of_element_located((By.CSS_SELECTOR, "#path-result p.path")))
        self.shot("path")
        names = [a.text for a in self.browser.find_elements(By.CSS_SELECTOR, "#path-result p.path a.author")]
        assert names == [a["name"] for a in expected["path"]], f"path {names}, API {expected['path']}"

    def bars(self, chart):
        """The bars of a year chart as {year: value}."""
        return {int(r.get_attribute("data-year")): int(r.get_attribute("data-value"))
                for r in chart.find_elements(By.CSS_SELECTOR, ".bars rect")}

    def check_front_page(self):
        overview, clusters = self.api("overview"), self.api("clusters")
        self.browser.get(self.url)
        self.heading_is("refgrove explorer")
        bubbles = self.wait.until(ec.presence_of_all_elements_located((By.CSS_SELECTOR, "#cluster-map g.bubble")))
        documents, citations = self.browser.find_elements(By.CSS_SELECTOR, "svg.chart")[:2]
        for chart, field in ((documents, "documents"), (citations, "citations")):
            expected = {row["year"]: row[field] for row in overview["years"]}
            drawn = {year: value for year, value in self.bars(chart).items() if value or year in expected}
            assert drawn == expected, f"{field} per year drawn {drawn}, API {expected}"
        shown = [int(li.get_attribute("data-did")) for li in self.browser.find_elements(By.CSS_SELECTOR, "ol.papers li")]
        assert shown == [p["did"] for p in overview["most_cited"]["papers"]], f"most cited {shown}"
        shown = [int(li.get_attribute("data-author"))
                 for li in self.browser.find_elements(By.CSS_SELECTOR, "ol.top-authors li")]
        assert shown == [a["id"] for a in overview["top_authors"]["authors"]], f"top authors {shown}"
        drawn = sorted(int(b.get_attribute("data-cluster")) for b in bubbles)
        assert drawn == [c["id"] for c in clusters["clusters"]], f"bubbles {drawn}, API {clusters['clusters']}"
        self.shot("front")
        return clusters["clusters"]

    def open_cluster(self, cluster):
        """Clicks the cluster's bubble and checks the page it opens."""
        expected = self.api(f"cluster/{cluster['id']}")
        bubble = self.browser.find_element(By.CSS_SELECTOR, f'#cluster-map g.bubble[data-cluster="{cluster["id"]}"]')
        self.browser.execute_script("arguments[0].dispatchEvent(new MouseEvent('click', {bubbles: true}))", bubble)
        self.heading_is(f"Cluster {cluster['id']}: ")
        self.wait.until(ec.presence_of_element_located((By.CSS_SELECTOR, "#timeline circle")))
        circles = self.browser.find_elements(By.CSS_SELECTOR, "#timeline circle")
        drawn = sorted(int(c.get_attribute("data-did")) for c in circles)
        assert drawn == sorted(m["did"] for m in expected["members"]), f"timeline {drawn}, API {expected['members']}"
        ringed = sorted(int(c.get_attribute("data-did")) for c in circles if "main-path" in (c.get_attribute("class") or ""))
        assert ringed == sorted(expected["main_path"]), f"main path drawn {ringed}, API {expected['main_path']}"
        arrows = self.browser.find_elements(By.CSS_SELECTOR, "#timeline .links line")
        assert len(arrows) == len(expected["links"]), f"{len(arrows)} arrows, API {len(expected['links'])}"
        self.shot("cluster")

    def check_author(self, author_id):
        expected = self.api(f"author/{author_id}/impact")
        self.browser.get(f"{self.url}#/author/{author_id}")
        self.heading_is(expected["name"])
        figures = self.wait.until(ec.presence_of_element_located((By.CSS_SELECTOR, ".impact .figures"))).text
        assert f"h-index {expected['h_index']}" in figures, f"figures {figures!r}, API {expected}"
        drawn = {year: value for year, value in self.bars(self.browser.find_element(By.CSS_SELECTOR, "svg.chart")).items()
                 if value}
        assert drawn == {row["year"]: row["citations"] for row in expected["citations_by_year"]}, f"drawn {drawn}"
        self.shot("author")

    def console_errors(self):
        return [e for e in self.browser.get_log("browser") if e["level"] == "SEVERE"]


def main():
    refgrove, sample, shot_dir = sys.argv[1:4]
    shutil.rmtree(shot_dir, ignore_errors=True)
    os.makedirs(shot_dir)
    with tempfile.TemporaryDirectory() as work:
        server, url = start_server(refgrove, sample, work)
        browser = None
        try:
            browser = start_browser(work)
            check = ExplorerCheck(browser, url, shot_dir)
            clusters = check.check_front_page()
            check.open_cluster(max(clusters, key=lambda c: (len(check.api(f"cluster/{c['id']}")["main_path"]), -c["id"])))
            check.check_author(check.api("overview")["top_authors"]["authors"][0]["id"])
            did = check.search_and_open("graph*")
            drawn = check.check_drawing(did)
            check.follow_node(did, drawn)
            check.find_path("Brin", "Ribeiro-Neto")
            errors = check.console_errors()
            assert not errors, f"console errors: {errors}"
        except Exception:
            if browser:
                browser.save_screenshot(os.path.join(shot_dir, "failure.png"))
            print(f"FAILED; screenshots in {shot_dir}", file=sys.stderr)
            raise
        finally:
            if browser:
                browser.quit()
            server.terminate()
            status = server.wait(timeout=TIMEOUT)
        assert status == 0, f"refgrove serve ended with status {status} after SIGTERM"
    print("explorer in the browser: 1 passed, 0 failed")


if __name__ == "__main__":
    main()
