"""Keeps the pages that show source files out of the site's search: mkdocs calls this."""
import json
import pathlib


def on_post_build(config):
    file = pathlib.Path(config["site_dir"]) / "search/search_index.json"
    index = json.loads(file.read_text())
    index["docs"] = [entry for entry in index["docs"]
                     if not entry["location"].startswith("source/")]
    file.write_text(json.dumps(index))
