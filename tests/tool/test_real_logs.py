"""Logs that cameras and labs wrote: every row arrives, every value under its field."""

import json
import os
import re

import pytest
from olelog import csv_rows, expect, info, messages, run

FOLDER = os.environ.get("OLE_REAL_LOGS")
pytestmark = pytest.mark.skipif(not FOLDER, reason="OLE_REAL_LOGS names no folder of real logs")

# Log, rows, first row's values by field, parameters. Key numbers come in their 15 characters, values
# without their trailing blanks.
LOGS = {
    "wide-129-columns": (
        4,
        {"Name": "test_017056", "chans": "V", "Start time": "01:00:00:00", "End time": "01:00:04:03", "Reel": ""},
        {"AUDIO_FORMAT": "48khz", "FIELD_DELIM": "TABS", "FPS": "24", "VIDEO_FORMAT": "1080"},
    ),
    "one-line-heading-crlf": (
        2,
        {
            "Name": "19A-1xa",
            "chans": "VA1",
            "Start time": "04:00:00:00",
            "End time": "04:00:46:16",
            "Reel": "3NY004",
            "Shot": "1xa",
            "start keycode": "KX6543210000+00",
            "start camcode": "13:18:25:14",
            "start 24P code": "04:00:00:00",
            "comp reel": "A007C001_140720_R2E4",
            "cam reel": "XA007",
            "cam_date": "07/21/14",
        },
        {},
    ),
    "custom-raster": (
        1,
        {"Name": "A118_C029_1102JR", "Start time": "14:40:02:11", "End time": "14:42:22:23", "Reel": "", "chans": ""},
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "CUSTOM", "AUDIO_FORMAT": "48khz", "FPS": "23.976"},
    ),
    "pal-cdl": (
        4,
        {
            "Name": "A005_C010_0501J0",
            "chans": "V",
            "Start time": "17:49:33:01",
            "End time": "17:49:35:10",
            "Reel": "A005_C010_0501J0",
            "cam_date": "20190501",
            "film label_std": "F35",
        },
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "PAL", "FPS": "23.976", "FILM_FORMAT": "35mm,4perf"},
    ),
    "dailies-245-columns": (
        6,
        {
            "Name": "469C-4-1",
            "chans": "VA1A2A3A4",
            "Start time": "19:42:28:17",
            "End time": "19:44:13:04",
            "Reel": "A_0076C001_230511_184122_h1CTJ",
            "Shot": "1",
            "comp reel": "A_0076_1CTJ_hde",
            "snd reel": "20230511_DAY019_MU",
            "snd start": "19:42:28:17",
            "start 24P code": "19:42:28:17",
            "cam_date": "",
        },
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "1080", "AUDIO_FORMAT": "48kHz", "FPS": "25"},
    ),
    "film-24p-ntsc": (
        5,
        {
            "Name": "01",
            "chans": "VA1A2",
            "Start time": "01:00:00:00",
            "End time": "01:10:00:00",
            "Reel": "253",
            "start keycode": "_______-0003+00",
            "start perf": "3",
            "start 24P code": "01:00:00:00",
            "film label_std": "F35",
        },
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "NTSC", "FILM_FORMAT": "35mm, 4 perf", "AUDIO_FORMAT": "44khz", "FPS": "24"},
    ),
    "minimal-ntsc": (
        1,
        {"Name": "CU Josh & Mary", "chans": "V", "Start time": "01:00:00:00", "End time": "01:15:05:00", "Reel": ""},
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "NTSC", "AUDIO_FORMAT": "44kHz", "TAPE": "001", "FPS": "29.97"},
    ),
    "scene-take-rolls": (
        28,
        {
            "Name": "101B-1a",
            "chans": "VA1A2A3A4A5",
            "Start time": "13:06:31:23",
            "End time": "13:07:32:10",
            "Reel": "A120C001_111215_R22A",
            "Shot": "01",
            "cam reel": "A120",
            "snd reel": "19-A",
            "cam_date": "2011-12-15",
        },
        {"FIELD_DELIM": "TABS", "VIDEO_FORMAT": "1080", "FILM_FORMAT": "35mm, 4 perf", "AUDIO_FORMAT": "48khz", "FPS": "23.976"},
    ),
}
LAST = {
    "wide-129-columns": {"Name": "Something", "End time": "01:00:04:06"},
    "dailies-245-columns": {"Name": "469C-4-6", "chans": "VA1A2A3A4A5"},
    "film-24p-ntsc": {"Reel": "253", "chans": "VA1A2A3A4", "Start time": "00:00:00:00", "End time": "23:59:59:29"},
    "scene-take-rolls": {"Name": "101D-6b", "cam reel": "B096", "Reel": "B096C015_111215_R1XE"},
}

CUT = {"one-line-heading-crlf"}  # its last row lacks the tabs at its end


def real(name):
    return os.path.join(FOLDER, name + ".ale")


def cells(name):
    """Titles and rows of a log, read here by the plainest means: cut at every tab."""
    lines = open(real(name), newline="").read().replace("\r\n", "\n").split("\n")
    titles = lines[[line.startswith("Column") for line in lines].index(True) + 1].strip("\n").split("\t")
    start = [line.startswith("Data") for line in lines].index(True) + 1
    return titles, [line.split("\t") for line in lines[start:] if line.strip()]


@pytest.mark.parametrize("name", LOGS)
def test_rows_values_and_parameters(tmp_path, name):
    rows, first, parameters = LOGS[name]
    table = tmp_path / "t.odb"
    assert f"{name}.ale: {rows} row" in expect(int(name in CUT), "import", real(name), "-o", table)
    facts = info(table)
    assert facts["rows"] == rows
    assert {p["name"]: p["value"] for p in facts["parameters"]} == ({"OLEDB": "Rev 1"} | parameters if parameters else {})
    got = csv_rows(table)
    assert len(got) == rows and first.items() <= got[0].items()
    assert LAST.get(name, {}).items() <= got[-1].items()
    shown = run("show", table)
    assert shown.returncode == 0 and shown.stdout.count(b"\n") == rows + 2


@pytest.mark.parametrize("name", LOGS)
def test_all_columns_keep_every_value(tmp_path, name):
    table = tmp_path / "t.odb"
    result = run("import", real(name), "-o", table, "--all-columns")
    said = messages(result)
    assert result.returncode == int(name in {"dailies-245-columns", *CUT}), said
    names = [c["name"] for c in info(table)["columns"]]
    assert len(names) <= 255 and len('","'.join(names)) + 2 <= 4095
    titles, rows = cells(name)
    missing = re.search(r"columns without room: (.*)", said)
    missing = missing.group(1).split(", ") if missing else []
    assert not missing or len('","'.join([*names, missing[0]])) + 2 > 4095
    for row, got in zip(rows, csv_rows(table), strict=True):
        for title, value in zip(titles, row):
            if title in names and title not in missing and title != "Reel":
                assert got[title] == value.strip(" "), title
            elif title in missing:
                assert title not in got


@pytest.mark.parametrize("name, cause", [("cr-only", "CR alone"), ("blank-lines", "line 14, behind \"Column\", is blank")])
def test_logs_that_the_rules_refuse(tmp_path, name, cause):
    assert cause in expect(3, "import", real(name), "-o", tmp_path / "t.odb")
    assert list(tmp_path.iterdir()) == []


def test_all_in_one_table(tmp_path):
    table = tmp_path / "t.odb"
    said = expect(1, "import", *map(real, LOGS), "-o", table, "--identify")
    assert said.count(": the row has ") == 1 and "crlf.ale:8: the row has 30 values for 32 column names" in said
    assert "t.odb: 51 rows, 44 columns" in said and said.count(": heading differs") >= 5
    assert len({row["Cookie"] for row in csv_rows(table)}) == 51


@pytest.mark.parametrize("name, rows, name_of_first", [("cr-only", 5, "EB_20220628-DJI_0247.new.01"), ("blank-lines", 1, "A020C003_150905_E2XZ.mov")])
def test_refused_logs_import_whole_when_mended(tmp_path, name, rows, name_of_first):
    mended, table = tmp_path / "m.ale", tmp_path / "t.odb"
    assert run("check", real(name), "--fix", mended).returncode == 1
    expect(0, "import", mended, "-o", table)
    got = csv_rows(table)
    assert len(got) == rows and got[0]["Name"] == name_of_first


# What there is to find besides columns without a field.
CHECKED = {"one-line-heading-crlf": ["heading-line", "key-number", "too-few-values", "trimmed-value"]}
CHECKED |= {"minimal-ntsc": ["no-line-end"], "film-24p-ntsc": ["key-number"], "cr-only": ["cr-line-ends"], "blank-lines": ["blank-names", "joined-columns", "title-spelling"]}


@pytest.mark.parametrize("name", [*LOGS, "cr-only", "blank-lines"])
def test_check_finds_what_is_there_and_no_more(name):
    result = run("check", real(name), "--json", "--ignore", "column-without-field")
    codes = sorted(finding["code"] for finding in json.loads(result.stdout)["findings"])
    assert codes == CHECKED.get(name, []) and result.returncode == (1 if codes else 0)
