"""DataSet, the loaded data directory, and the types of its answers."""
from __future__ import annotations

import html
import os
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any, Iterable, List, NamedTuple, Optional, Tuple, Union

from . import _convert
from ._refgrove import _DataSet

if TYPE_CHECKING:  # imported by the conversions only when called
    import igraph
    import networkx
    import pandas
    import scipy.sparse


class Hits(list):
    """A list of (did, score) pairs, best first, that a limit may have cut:
    ``truncated`` tells whether more would have followed, and ``total``,
    where known (search), how many there are in all."""

    def __init__(
        self, items: Iterable[Tuple[int, Any]] = (), truncated: bool = False, total: Optional[int] = None
    ) -> None:
        """The pairs, whether the limit cut them, and how many there are."""
        super().__init__(items)
        self.truncated = truncated
        self.total = total

    def __repr__(self) -> str:
        """The pairs, and the cut when there was one."""
        return f"Hits({list.__repr__(self)}, truncated=True)" if self.truncated else list.__repr__(self)


class CollaborationPath(NamedTuple):
    """A shortest path between two authors in the co-author graph: ``authors``
    from the first to the second, and between each two a document they wrote
    together (``documents[i]`` links ``authors[i]`` and ``authors[i + 1]``)."""

    authors: List[int]
    documents: List[int]


class Neighbourhood(NamedTuple):
    """The documents around one: ``nodes`` as (did, hops) pairs, the centre
    first, then the closest, then by citation count descending, then by DID;
    ``edges`` the citations among them as (citing, cited) pairs, by citing,
    then cited DID; ``truncated`` whether the limit left documents out."""

    nodes: List[Tuple[int, int]]
    edges: List[Tuple[int, int]]
    truncated: bool


class AuthorImpact(NamedTuple):
    """An author's impact: ``documents`` (the graph records listing them),
    ``citations`` (those these received within the set), ``h_index`` (the
    largest h such that h of the documents have at least h citations each),
    ``first_year`` and ``last_year`` of the documents with a year (None
    when none has one)."""

    documents: int
    citations: int
    h_index: int
    first_year: Optional[int]
    last_year: Optional[int]


class Cluster(NamedTuple):
    """One cluster: ``size`` (members), ``documents`` (its documents: the
    members, or for the co-author graph the documents of its authors),
    ``modularity`` (its share of the clustering's), ``first_year`` and
    ``last_year`` of its documents (None when none has a year), ``top``
    (DIDs of its most cited documents, at most 5) and ``label`` (its most
    characteristic title words, at most 3, best first)."""

    size: int
    documents: int
    modularity: float
    first_year: Optional[int]
    last_year: Optional[int]
    top: List[int]
    label: List[str]


class Clusters(list):
    """The clusters of a graph, as a list of Cluster by id (numbered from 0 by
    size, largest first), with ``members`` (DIDs ascending, or author ids
    for the co-author graph; numpy int32) and ``membership`` (each member's
    cluster id, aligned with ``members``), the ``modularity`` (resolution 1)
    and ``quality`` (what was optimised) of the clustering, how many
    ``iterations`` ran and whether the last moved nothing (``stable``)."""

    def __init__(self, data_set: "DataSet", options: tuple) -> None:
        """The clustering of ``data_set`` with these options."""
        members, membership, clusters, modularity, quality, iterations, stable = data_set._clusters(options)
        super().__init__(Cluster(*c[:-2], list(c[-2]), list(c[-1])) for c in clusters)
        self.members = members
        self.membership = membership
        self.modularity = modularity
        self.quality = quality
        self.iterations = iterations
        self.stable = stable
        self._data_set = data_set
        self._options = options

    def __repr__(self) -> str:
        """The number of clusters and the modularity."""
        return f"<refgrove.Clusters: {len(self)} clusters of {len(self.members)} members, modularity {self.modularity:.4f}>"

    def citations_by_year(self, cluster: int) -> List[Tuple[int, int]]:
        """The citations received by the cluster's documents per year of the
        citing document, as (year, count) pairs by year."""
        return self._data_set._cluster_timeline(self._options, cluster, False)

    def documents_by_year(self, cluster: int) -> List[Tuple[int, int]]:
        """The cluster's documents per year, as (year, count) pairs by year."""
        return self._data_set._cluster_timeline(self._options, cluster, True)

    def to_pandas(self) -> "pandas.DataFrame":
        """One row per cluster, indexed by id: the fields of Cluster."""
        import pandas

        return pandas.DataFrame(list(self), columns=Cluster._fields).rename_axis("cluster")


@dataclass(frozen=True, repr=False)
class Document:
    """One document: what its graph record and its word data say.

    ``key`` and ``year`` are None when unknown; ``cites`` lists the DIDs its
    record cites, in the record's order; ``cited_by`` the documents of the
    set citing it, by ascending DID; ``author_ids`` the ids of ``authors``.
    """

    did: int
    key: Optional[str]
    year: Optional[int]
    title: str
    authors: List[str] = field(default_factory=list)
    author_ids: List[int] = field(default_factory=list)
    abstract: str = ""
    cites: List[int] = field(default_factory=list)
    cited_by: List[int] = field(default_factory=list)

    @property
    def citation_count(self) -> int:
        """How many documents of the set cite this one."""
        return len(self.cited_by)

    def __repr__(self) -> str:
        """The fields, the abstract shortened."""
        abstract = self.abstract if len(self.abstract) <= 60 else self.abstract[:57] + "..."
        return (
            f"Document(did={self.did}, key={self.key!r}, year={self.year!r}, title={self.title!r}, "
            f"authors={self.authors!r}, cites={self.cites!r}, cited_by={self.cited_by!r}, "
            f"abstract={abstract!r})"
        )

    def _repr_html_(self) -> str:
        """The document as Jupyter shows it."""
        e = html.escape
        year = f" ({self.year})" if self.year is not None else ""
        key = f", key {e(self.key)}" if self.key else ""
        return (
            f"<div><b>{e(self.title) or '(no title)'}</b>{year}<br>{e(', '.join(self.authors))}<br>"
            f"<small>DID {self.did}{key}; cites {len(self.cites)}, cited by {self.citation_count}</small>"
            f"<p>{e(self.abstract)}</p></div>"
        )


class DataSet(_DataSet):
    """A loaded data directory: its documents, their words and citations, and
    the analyses of its citation and co-author graphs.

    Made by ``refgrove.load(data_dir)``; a context manager that closes it.
    Any number of threads may query one DataSet at once; the long calls
    (loading, search, PageRank, components, the first use of an analysis)
    release the GIL. Arrays handed out stay valid after close().

    DIDs and author ids are Python or numpy integers; limits are integers of
    at least 0, or None for no limit.
    """

    def __init__(self, data_dir: Union[str, bytes, os.PathLike]) -> None:
        """Loads the data directory ``data_dir``; raises DataDirectoryError
        when it is none."""
        super().__init__(os.fspath(data_dir))

    def __repr__(self) -> str:
        """The path, and the size unless closed."""
        if self.closed:
            return f"<refgrove.DataSet {self.path!r}, closed>"
        return f"<refgrove.DataSet {self.path!r}: {len(self)} documents>"

    def __enter__(self) -> DataSet:
        """The data set itself."""
        return self

    def __exit__(self, *exc_info: object) -> None:
        """Closes the data set."""
        self.close()

    def document(self, did_or_key: Union[int, str, bytes]) -> Document:
        """The document with this DID (an integer) or key (a str, or bytes as
        stored). Raises NotFoundError when there is none."""
        if isinstance(did_or_key, (str, bytes)):
            did_or_key = self.did(did_or_key)
        return Document(**self._document(did_or_key))

    def search(
        self, query: Union[str, bytes], mode: str = "and", limit: Optional[int] = 10, exact: bool = False
    ) -> Hits:
        """The documents whose title or abstract hold the query's terms (mode
        "and": all of them, "or": at least one), best first by BM25, as
        (did, score) pairs; equal scores by ascending DID; ``total`` of the
        result is the number of documents matching. A term matches the words
        with the same English stem ("holes": hole and holes), or with
        exact=True the words equal to it, ignoring case and accents; a term
        ending in "*" every word starting with the rest; words in double
        quotes form a phrase, matched where they follow one another in the
        title or in the abstract. Raises ArgumentError for a query without a
        term, with an open quote, or an unknown mode."""
        return Hits(*self._search(query, mode, limit, bool(exact)))

    def ranked(
        self, by: str = "citations", limit: Optional[int] = 10, years: Optional[Tuple[int, int]] = None
    ) -> Hits:
        """The best documents by citation count ("citations") or PageRank
        ("pagerank"), as (did, score) pairs, ties by ascending DID; with
        ``years=(first, last)``, only those whose year lies in that range."""
        return Hits(*self._ranked(by, limit, years))

    def collaboration_path(self, a: int, b: int) -> Optional[CollaborationPath]:
        """A shortest collaboration path between authors ``a`` and ``b``, or
        None when they are unconnected. Raises ArgumentError for an id
        outside the author table."""
        path = self._collaboration_path(a, b)
        return None if path is None else CollaborationPath(*path)

    def neighbourhood(
        self, did: int, hops: Optional[int] = 1, direction: str = "both", limit: Optional[int] = 100
    ) -> Neighbourhood:
        """The documents within ``hops`` citations of ``did`` (following them
        "out" to the cited, "in" to the citing, or "both" ways), at most
        ``limit`` of them, and the citations among them. Raises ArgumentError
        for a DID without a graph record."""
        return Neighbourhood(*self._neighbourhood(did, hops, direction, limit))

    def author_impact(self, author: int) -> AuthorImpact:
        """The impact of author ``author``. Raises ArgumentError for an id
        outside the author table."""
        return AuthorImpact(*self._author_impact(author))

    def ranked_authors(self, by: str = "h-index", limit: Optional[int] = 10) -> Hits:
        """The best authors by "h-index", "citations" (received within the
        set) or "documents", as (author id, value) pairs, ties by ascending
        id."""
        return Hits(*self._ranked_authors(by, limit))

    def clusters(
        self,
        graph: str = "citation",
        *,
        quality: str = "modularity",
        resolution: float = 1.0,
        seed: int = 1,
        min_citations: int = 1,
        min_weight: int = 1,
        iterations: int = 10,
    ) -> Clusters:
        """The clusters of a graph by the Leiden algorithm: "citation" (the
        citation graph taken undirected), "cocitation" or "coupling" (the
        documents with at least ``min_citations`` citations, linked by how
        many documents cite both, or both cite, when that is at least
        ``min_weight``) or "coauthor" (authors linked by their joint
        documents). ``quality`` "modularity" or "cpm" (the constant Potts
        model), with ``resolution`` (larger for more, smaller clusters); the
        same ``seed`` gives the same clusters; ``iterations`` (10) of the
        algorithm, 0 repeating them until one moves nothing (at most 1000;
        on large sets that takes long for little gain). Made once per options and
        kept with the set. Raises ArgumentError for an unknown graph or
        quality."""
        return Clusters(self, (graph, quality, float(resolution), seed, min_citations, min_weight, iterations))

    def similar(self, did: int, by: str = "cocitation", limit: Optional[int] = 10, measure: str = "count") -> Hits:
        """The documents most like ``did``, as (did, score) pairs, score
        descending, then by DID: by co-citation ("cocitation", documents
        citing both) or bibliographic coupling ("coupling", documents both
        cite). ``measure`` "count" (an int: how many), "cosine" (Salton's:
        the count over the square root of the product of the two documents'
        citing, or cited, documents) or "jaccard" (the count over the size
        of their union), which do not favour highly cited documents as
        counts do. Raises ArgumentError for a DID without a graph record."""
        return Hits(*self._similar(did, by, measure, limit))

    def timeline(self, did: Optional[int] = None, *, author: Optional[int] = None) -> List[Tuple[int, int]]:
        """The same as citations_by_year."""
        return self.citations_by_year(did, author=author)

    def to_pandas(self) -> "pandas.DataFrame":
        """A DataFrame with one row per document of ``dids``: did, key, year
        (nullable), title, authors (lists of names), cites (lists of DIDs),
        citation_count and pagerank."""
        return _convert.to_pandas(self)

    def to_networkx(self) -> "networkx.DiGraph":
        """The citation graph as a networkx DiGraph: nodes are DIDs, with
        key, year and title as attributes; an edge from citing to cited."""
        return _convert.to_networkx(self)

    def to_igraph(self) -> "igraph.Graph":
        """The citation graph as a directed igraph Graph: vertex i is the
        document ``dids[i]`` (vertex attribute "did")."""
        return _convert.to_igraph(self)

    def to_scipy(self) -> "scipy.sparse.csr_matrix":
        """The citation graph's adjacency as a CSR matrix (int32 ones):
        row i cites column j when ``dids[i]`` cites ``dids[j]``."""
        return _convert.to_scipy(self)


def load(data_dir: Union[str, bytes, os.PathLike]) -> DataSet:
    """Loads the data directory ``data_dir`` (made by refgrove preprocess or
    refgrove.preprocess); raises DataDirectoryError when it is none."""
    return DataSet(data_dir)
