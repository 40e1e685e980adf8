"""The figures that a run has left, and what is made of them."""

import json
import statistics

# Each in the order it is shown in: its key, its name and its least round trips. TCP takes one, TLS
# 1.3 one, the request one; a kept connection needs the last only. The page has a server of its own,
# to which a connection may be kept from the page before.
WAITS = {
    "first": ("first call", 3),
    "second": ("second call", 1),
    "idle": ("call after 60 s without one", 1),
    "page": ("charge until its page is painted, first page", 4),
    "page-later": ("charge until its page is painted, later", 2),
}
CONTENDERS = {"library": "the library", "libsoup": "libsoup 3", "qt": "Qt 6"}
# Other ways to make the first call, with their least round trips.
VARIANTS = {
    "library-later": ("first call, a second after configuration", 3),
    "library-ahead": ("first call, with the connection opened ahead", 1),
}


class Figures:
    def __init__(self, file):
        with open(file) as text:
            run = json.load(text)
        self.date, self.machine, self.authorities = run["date"], run["machine"], run["authorities"]
        self.ways = run["ways"]
        self.figures = {(figure["wait"], figure["way"], figure["contender"]): figure
                        for figure in run["figures"]}

    def of(self, wait, way, contender, key="milliseconds"):
        """All that was measured; `way` by its number."""
        return self.figures.get((wait, way, contender), {}).get(key, [])

    def median(self, wait, way, contender, key="milliseconds"):
        """None where nothing was measured."""
        values = self.of(wait, way, contender, key)
        return statistics.median(values) if values else None

    def least(self, trips, way):
        return trips * self.ways[way]["milliseconds"]
