// The explorer's page: views routed by the URL's fragment, each drawn from
// the JSON API (/api/...). Texts from the data go into the page as text
// nodes only, never as markup.
"use strict";

const view = document.getElementById("view");

// ---- Building elements ----------------------------------------------------

// el("a", {href: "#/"}, "text", child, ...): an element with attributes and
// children (strings become text nodes; null and undefined are skipped).
function el(tag, attributes, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (name === "onclick" || name === "onsubmit" || name === "onchange") node[name] = value;
    else node.setAttribute(name, value);
  }
  for (const child of children.flat()) {
    if (child === null || child === undefined) continue;
    node.append(child instanceof Node ? child : String(child));
  }
  return node;
}

const paperHref = (did) => `#/paper/${did}`;
const authorHref = (id) => `#/author/${id}`;

function yearText(year) {
  return year === null ? "year unknown" : String(year);
}

function citedText(count) {
  return count === 0 ? "Not cited" : count === 1 ? "Cited once" : `Cited ${count} times`;
}

function paperLink(paper) {
  return el("a", {href: paperHref(paper.did)}, paper.title || `DID ${paper.did}`);
}

function authorLinks(authors) {
  const links = [];
  authors.forEach((a, i) => {
    if (i > 0) links.push(", ");
    links.push(el("a", {href: authorHref(a.id)}, a.name));
  });
  return links;
}

// A list of papers: title (a link), year, and the authors when given.
function paperList(papers, extra) {
  if (papers.length === 0) return el("p", {class: "empty"}, "none");
  return el("ol", {class: "papers"}, papers.map((p) =>
    el("li", {"data-did": p.did}, paperLink(p), " ", el("span", {class: "year"}, yearText(p.year)),
       p.authors ? el("div", {class: "authors"}, authorLinks(p.authors)) : null,
       extra ? extra(p) : null)));
}

function section(title, ...content) {
  return el("section", {}, el("h2", {}, title), ...content);
}

function show(...content) {
  view.replaceChildren(...content);
}

// ---- The API --------------------------------------------------------------

class ApiError extends Error {}

async function api(path, params) {
  const query = params ? "?" + new URLSearchParams(params) : "";
  const response = await fetch("/api/" + path + query);
  const body = await response.json();
  if (!response.ok) throw new ApiError(body.error || response.statusText);
  return body;
}

// ---- Views ----------------------------------------------------------------

async function searchView(params) {
  const q = params.get("q") || "";
  const mode = params.get("mode") === "or" ? "or" : "and";
  document.getElementById("search-input").value = q;
  document.getElementById("search-mode").value = mode;
  const r = await api("search", {q, mode, limit: 50});
  document.title = `${q} – refgrove explorer`;
  const parts = [el("h1", {}, "Search: ", q)];
  if (r.authors.length) {
    parts.push(section("Authors", el("ul", {class: "authors-found"},
      r.authors.map((a) => el("li", {}, el("a", {href: authorHref(a.id)}, a.name))))));
  }
  if (r.keys.length) parts.push(section("By key", paperList(r.keys)));
  parts.push(section(`Papers (${r.hits.length})`, paperList(r.hits)));
  show(...parts);
}

async function paperView(did, params) {
  const p = await api(`paper/${did}`);
  document.title = `${p.title || p.did} – refgrove explorer`;
  const similar = (list, what) => paperList(list, (s) => el("span", {class: "score"}, ` · ${s.score} ${what}`));
  show(
    el("article", {class: "paper"},
      el("h1", {}, p.title || `DID ${p.did}`),
      el("p", {class: "meta"}, `DID ${p.did}`, p.key ? ` · key ${p.key}` : "", ` · ${yearText(p.year)}`),
      el("p", {class: "authors"}, authorLinks(p.authors)),
      el("p", {class: "figures"}, citedText(p.citation_count),
         p.pagerank === null ? "" : ` · PageRank ${p.pagerank.toPrecision(3)}`),
      p.abstract ? el("p", {class: "abstract"}, p.abstract) : el("p", {class: "empty"}, "No abstract.")),
    neighbourhoodPanel(did, params),
    el("div", {class: "columns"},
      section(`Cites (${p.cites.length})`, paperList(p.cites)),
      section(`Cited by (${p.cited_by.length})`, paperList(p.cited_by))),
    el("div", {class: "columns"},
      section("Similar by co-citation", similar(p.similar.cocitation, "citing both")),
      section("Similar by coupling", similar(p.similar.coupling, "shared references"))));
}

async function authorView(id, params) {
  const [a, impact] = await Promise.all([api(`author/${id}`), api(`author/${id}/impact`)]);
  document.title = `${a.name} – refgrove explorer`;
  const input = el("input", {id: "path-to", type: "search", placeholder: "another author's name or id", required: ""});
  const result = el("div", {id: "path-result"});
  const form = el("form", {id: "path-form", onsubmit: (e) => {
    e.preventDefault();
    navigate(`#/author/${id}?to=${encodeURIComponent(input.value.trim())}`);
  }}, input, " ", el("button", {type: "submit"}, "Find path"));
  show(el("h1", {}, a.name), impactPanel(impact),
    el("div", {class: "columns"},
      section(`Papers (${a.papers.length})`, paperList(a.papers)),
      section(`Co-authors (${a.coauthors.length})`, a.coauthors.length === 0 ? el("p", {class: "empty"}, "none") :
        el("ul", {class: "coauthors"}, a.coauthors.map((c) =>
          el("li", {}, el("a", {href: authorHref(c.id)}, c.name), ` (${c.shared} shared)`))))),
    section("Collaboration path", form, result));
  const to = params.get("to");
  if (to) {
    input.value = to;
    result.replaceChildren(await collaborationPath(id, to));
  }
}

// The path from author `from` to the author `to` names (an id, or the first
// author that a search for the name finds).
async function collaborationPath(from, to) {
  let toId = /^\d+$/.test(to) ? to : null;
  if (toId === null) {
    const found = await api("search", {q: to, mode: "and", limit: 1});
    if (found.authors.length === 0) return el("p", {class: "empty"}, `No author is called “${to}”.`);
    toId = found.authors[0].id;
  }
  const r = await api("path", {from, to: toId});
  if (r.path.length === 0) return el("p", {class: "empty"}, "These authors are not connected by co-authorship.");
  const steps = [];
  r.path.forEach((a, i) => {
    if (i > 0) {  // the arrow leads to the paper the two wrote together
      const shared = r.papers[i - 1];
      steps.push(" ", el("a", {class: "arrow", href: paperHref(shared.did), title: shared.title}, "→"), " ");
    }
    steps.push(el("a", {class: "author", href: authorHref(a.id)}, a.name));
  });
  return el("p", {class: "path"}, `Distance ${r.distance}: `, steps);
}

async function rankView(params) {
  const by = params.get("by") === "pagerank" ? "pagerank" : "citations";
  const years = params.get("years") || "";
  const [from, to] = years.split("-");
  const fromInput = el("input", {name: "from", type: "number", min: 0, max: 9999, placeholder: "from", value: from || ""});
  const toInput = el("input", {name: "to", type: "number", min: 0, max: 9999, placeholder: "to", value: to || ""});
  const bySelect = el("select", {name: "by"}, el("option", {value: "citations"}, "most cited"),
                      el("option", {value: "pagerank"}, "highest PageRank"));
  bySelect.value = by;
  const form = el("form", {id: "rank-form", onsubmit: (e) => {
    e.preventDefault();
    const range = fromInput.value && toInput.value ? `&years=${fromInput.value}-${toInput.value}` : "";
    navigate(`#/rank?by=${bySelect.value}${range}`);
  }}, bySelect, " published ", fromInput, " to ", toInput, " ", el("button", {type: "submit"}, "Show"));
  const limit = Math.min(Number(params.get("limit")) || 50, 1000);  // the API gives 1000 at most
  const query = {by, limit};
  if (years) query.years = years;
  const r = await api("rank", query);
  const more = `#/rank?by=${by}${years ? `&years=${years}` : ""}&limit=${Math.min(limit * 2, 1000)}`;
  const shown = !r.truncated ? "" : el("p", {class: "cut"}, `${r.papers.length} of ${r.total} papers`,
    limit < 1000 ? [" · ", el("a", {href: more}, "show more")] : "");
  document.title = "Rankings – refgrove explorer";
  show(el("h1", {}, "Rankings"), form,
    el("table", {class: "ranking"},
      el("thead", {}, el("tr", {}, el("th", {}, "#"), el("th", {}, "paper"), el("th", {}, "year"),
                         el("th", {}, "citations"), el("th", {}, "PageRank"))),
      el("tbody", {}, r.papers.map((p, i) => el("tr", {"data-did": p.did},
        el("td", {}, i + 1), el("td", {}, paperLink(p)), el("td", {}, p.year === null ? "" : p.year),
        el("td", {}, p.citation_count), el("td", {}, p.pagerank.toPrecision(3)))))), shown);
}

// ---- The neighbourhood drawing --------------------------------------------

function neighbourhoodPanel(did, params) {
  const hops = params.get("hops") || "1";
  const direction = params.get("direction") || "both";
  const hopsSelect = el("select", {id: "hops", onchange: () => redraw()},
    ["1", "2", "3"].map((h) => el("option", {value: h}, `${h} hop${h === "1" ? "" : "s"}`)));
  const directionSelect = el("select", {id: "direction", onchange: () => redraw()},
    el("option", {value: "both"}, "cites and cited by"), el("option", {value: "out"}, "cites"),
    el("option", {value: "in"}, "cited by"));
  hopsSelect.value = hops;
  directionSelect.value = direction;
  const redraw = () => navigate(`#/paper/${did}?hops=${hopsSelect.value}&direction=${directionSelect.value}`);
  const svg = el("div", {id: "graph"});
  const panel = section("Neighbourhood", el("div", {class: "controls"}, hopsSelect, " ", directionSelect), svg,
    el("p", {class: "legend"}, "Node size: citations · colour: year (dark early, yellow late, grey unknown) · ",
       "arrows point to the cited paper · click a node to open it"));
  api(`neighbourhood/${did}`, {hops, direction, limit: 150})
    .then((n) => {
      drawNeighbourhood(svg, n);
      if (n.truncated) svg.append(el("p", {class: "cut"}, `${n.nodes.length} of ${n.total} papers drawn: the closest and most cited.`));
    })
    .catch((e) => svg.replaceChildren(el("p", {class: "error"}, e.message)));
  return panel;
}

function drawNeighbourhood(container, n) {
  const width = 900, height = 520;
  const nodes = n.nodes.map((d) => Object.assign({}, d));
  const links = n.links.map((l) => Object.assign({}, l));
  const years = nodes.map((d) => d.year).filter((y) => y !== null);
  const first = Math.min(...years), last = Math.max(...years);
  const colour = (y) => y === null ? "#bbb" : d3.interpolateViridis(last > first ? (y - first) / (last - first) : 0.5);
  const radius = (d) => 5 + 2.5 * Math.sqrt(d.citation_count);

  const svg = d3.create("svg").attr("viewBox", [-width / 2, -height / 2, width, height]).attr("role", "img")
    .attr("aria-label", `the ${nodes.length} papers around DID ${n.center}`);
  addArrowMarker(svg, "arrow");
  const layer = svg.append("g");
  const link = layer.append("g").attr("class", "links").selectAll("line").data(links).join("line")
    .attr("marker-end", "url(#arrow)");
  const node = layer.append("g").attr("class", "nodes").selectAll("circle").data(nodes).join("circle")
    .attr("data-did", (d) => d.did)
    .attr("r", radius)
    .attr("fill", (d) => colour(d.year))
    .classed("center", (d) => d.did === n.center)
    .on("click", (d) => navigate(paperHref(d.did)))
    .on("mouseover", (d) => showTooltip(`${d.title || "DID " + d.did} (${yearText(d.year)}, cited ${d.citation_count})`))
    .on("mousemove", () => moveTooltip(d3.event))
    .on("mouseout", hideTooltip);
  node.append("title").text((d) => d.title || `DID ${d.did}`);

  const simulation = d3.forceSimulation(nodes)
    .force("link", d3.forceLink(links).id((d) => d.did).distance(90))
    .force("charge", d3.forceManyBody().strength(-400))
    .force("collide", d3.forceCollide().radius((d) => radius(d) + 3))
    .force("x", d3.forceX()).force("y", d3.forceY());
  const centre = nodes.find((d) => d.did === n.center);
  if (centre) centre.fx = centre.fy = 0;
  simulation.on("tick", () => {
    placeArrows(link, radius);
    node.attr("cx", (d) => d.x).attr("cy", (d) => d.y);
  });
  node.call(d3.drag()
    .on("start", (d) => { if (!d3.event.active) simulation.alphaTarget(0.3).restart(); d.fx = d.x; d.fy = d.y; })
    .on("drag", (d) => { d.fx = d3.event.x; d.fy = d3.event.y; })
    .on("end", (d) => { if (!d3.event.active) simulation.alphaTarget(0); if (d !== centre) d.fx = d.fy = null; }));
  svg.call(d3.zoom().scaleExtent([0.2, 5]).on("zoom", () => layer.attr("transform", d3.event.transform)));
  container.replaceChildren(svg.node());
  // Stops the layout when the page moves on.
  window.addEventListener("hashchange", () => simulation.stop(), {once: true});
}

// An arrowhead `id` for the lines of `svg`, of one size whatever their width.
function addArrowMarker(svg, id) {
  svg.append("defs").append("marker").attr("id", id).attr("viewBox", "0 -4 8 8").attr("refX", 8)
    .attr("markerWidth", 8).attr("markerHeight", 8).attr("markerUnits", "userSpaceOnUse").attr("orient", "auto")
    .append("path").attr("d", "M0,-4L8,0L0,4").attr("fill", "#999");
}

// Draws each citation of `lines` from its citing node to the rim of the
// cited node (of radius(node)), where the arrowhead shows.
function placeArrows(lines, radius) {
  lines.each(function (l) {
    const dx = l.target.x - l.source.x, dy = l.target.y - l.source.y;
    const length = Math.hypot(dx, dy) || 1, r = radius(l.target) + 2;
    d3.select(this).attr("x1", l.source.x).attr("y1", l.source.y)
      .attr("x2", l.target.x - dx / length * r).attr("y2", l.target.y - dy / length * r);
  });
}

const tooltip = document.getElementById("tooltip");
function showTooltip(text) {
  tooltip.textContent = text;
  tooltip.hidden = false;
}
function moveTooltip(event) {
  tooltip.style.left = `${event.pageX + 12}px`;
  tooltip.style.top = `${event.pageY + 12}px`;
}
function hideTooltip() {
  tooltip.hidden = true;
}

// ---- Routing --------------------------------------------------------------

function navigate(hash) {
  if (location.hash === hash) route();
  else location.hash = hash;
}

async function route() {
  hideTooltip();
  const [path, query] = location.hash.replace(/^#/, "").split("?");
  const params = new URLSearchParams(query || "");
  const parts = path.split("/").filter((s) => s !== "");
  view.classList.add("loading");
  try {
    if (parts[0] === "search") await searchView(params);
    else if (parts[0] === "paper" && parts[1]) await paperView(parts[1], params);
    else if (parts[0] === "author" && parts[1]) await authorView(parts[1], params);
    else if (parts[0] === "cluster" && parts[1]) await clusterView(parts[1]);
    else if (parts[0] === "rank") await rankView(params);
    else await homeView();
  } catch (e) {
    if (!(e instanceof ApiError)) throw e;
    show(el("h1", {}, "Not found"), el("p", {class: "error"}, e.message));
  } finally {
    view.classList.remove("loading");
  }
}

document.getElementById("search-form").addEventListener("submit", (e) => {
  e.preventDefault();
  const q = document.getElementById("search-input").value.trim();
  const mode = document.getElementById("search-mode").value;
  navigate(`#/search?q=${encodeURIComponent(q)}&mode=${mode}`);
});
window.addEventListener("hashchange", route);
route();
