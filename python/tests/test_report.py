"""python3 -m vel report: one self-contained page, one picture per generated
table, shown by a headless browser."""
import base64
import html
import os
import re
import shutil
import subprocess
import sys

import pytest

from conftest import GOLDEN, MAINTENANCE, REPOSITORY, RESULTS_HINT, program_json



def report(path, output, *options):
    environment = dict(os.environ, PYTHONPATH=str(REPOSITORY / "python"))
    environment.pop("DISPLAY", None)
    return subprocess.run([sys.executable, "-m", "vel", "report", str(path), "-o", str(output), *options],
                          capture_output=True, text=True, env=environment, check=False)


def pictures(page):
    """The PNG data of every img element of the page."""
    found = re.findall(r'<img [^>]*src="data:image/png;base64,([^"]+)"', page)
    assert len(found) == page.count("<img ")
    return [base64.b64decode(data) for data in found]


def test_every_generated_table_is_one_embedded_picture(tmp_path):
    output = tmp_path / "report.html"
    done = report(MAINTENANCE, output)
    assert done.returncode == 0, done.stderr
    tables = len(program_json("generate", MAINTENANCE)["tables"])
    page = output.read_text()
    images = pictures(page)
    assert len(images) == tables == 8
    assert all(image.startswith(b"\x89PNG\r\n\x1a\n") for image in images)
    assert not re.search(r'(src|href)="(?!data:)', page)  # nothing fetched from elsewhere
    assert "NoisyOR(Wear == &quot;high&quot;, 0.2" in page


@pytest.mark.skipif(shutil.which("chromium") is None, reason="Chromium is not installed")
def test_chromium_shows_every_picture(tmp_path):
    output = tmp_path / "report.html"
    assert report(MAINTENANCE, output).returncode == 0
    profile = tmp_path / "profile"
    profile.mkdir()
    done = subprocess.run(
        ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--no-first-run", f"--user-data-dir={profile}",
         "--dump-dom", output.as_uri()],
        capture_output=True, text=True, timeout=120, check=False)
    shown = re.search(r'id="images-shown" data-count="(\d+)"', done.stdout)
    assert shown, done.stderr[-2000:]
    assert int(shown.group(1)) == len(program_json("generate", MAINTENANCE)["tables"])


@pytest.mark.parametrize("model, options", [("fail_state_layout", []), ("fail_not_compiled", []),
                                            ("fail_not_compiled", ["--propagate"])])
def test_failed_tables_are_reported_and_the_others_drawn(tmp_path, model, options):
    output = tmp_path / "report.html"
    done = report(GOLDEN / f"{model}.yaml", output, *options)
    expected = program_json("generate", GOLDEN / f"{model}.yaml", *options)
    assert len(pictures(output.read_text())) == len(expected["tables"])
    assert done.returncode == (1 if expected["error"] else 0)
    if expected["error"]:
        message = expected["error"]["message"].removesuffix(RESULTS_HINT)
        assert html.escape(message) in output.read_text() and message in done.stderr


def test_a_file_that_cannot_be_loaded_writes_nothing(tmp_path):
    broken = tmp_path / "broken.yaml"
    broken.write_text("nodes: [\n")
    done = report(broken, tmp_path / "report.html")
    assert done.returncode == 2
    assert done.stderr.strip() == program_json("generate", broken)["error"]["message"]
    assert not (tmp_path / "report.html").exists()
