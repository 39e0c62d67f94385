"""The converter that a user writes today to get OpenAlex works into
refgrove: the standard json and gzip modules, the works read into a dict
(a work read again replaces the earlier one), then the graph dump and a
word dump written for `refgrove preprocess`. The benchmark times it against
`refgrove import openalex` on the same parts.

Usage: openalex_to_dumps.py DUMPS_DIR PART...
"""
import gzip
import json
import os
import sys


def short(openalex_id):
    return openalex_id.rsplit("/", 1)[-1]


def abstract(index):
    if not index:
        return ""
    placed = sorted((p, word) for word, positions in index.items() for p in positions)
    return " ".join(word for _, word in placed)


def tokens(text):
    return " ".join(t for t in text.split() if t not in ("Title:", "Authors:"))


def main(out_dir, parts):
    works = {}
    for path in parts:
        with gzip.open(path, "rt", encoding="utf-8") as f:
            for line in f:
                if not line.strip():
                    continue
                w = json.loads(line)
                names = [a["author"]["display_name"] for a in w.get("authorships") or []
                         if (a.get("author") or {}).get("display_name")]
                works[short(w["id"])] = (
                    w.get("publication_year"),
                    w.get("title") if w.get("title") is not None else (w.get("display_name") or ""),
                    names,
                    abstract(w.get("abstract_inverted_index")),
                    [short(r) for r in w.get("referenced_works") or []],
                )
    did = {key: i + 1 for i, key in enumerate(works)}
    os.makedirs(out_dir, exist_ok=True)
    with open(os.path.join(out_dir, "graph-data-aug-2002.txt"), "w", encoding="utf-8") as graph, \
            open(os.path.join(out_dir, "word-data1-mar-2002.txt"), "w", encoding="utf-8") as words:
        for key, (year, title, names, text, cites) in works.items():
            cited = []
            for c in cites:
                if c not in did:
                    did[c] = len(did) + 1
                cited.append(str(did[c]))
            line = [str(did[key]), key, str(year) if year is not None else "-", "GIDs:", *cited, "DIDs:", *cited,
                    "Title:", tokens(title) or "-", "Authors:", " and ".join(tokens(n) for n in names)]
            graph.write(" ".join(line) + "\n")
            if text:
                words.write(f"{did[key]} - {tokens(text)}\n")
    for name in ("word-data2-mar-2002.txt", "word-data3-mar-2002.txt"):
        open(os.path.join(out_dir, name), "w").close()


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
