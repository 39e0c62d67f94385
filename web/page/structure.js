// The views of the field's structure: the front page (the set at a glance
// and the map of its clusters), a cluster's page with its timeline drawing,
// and the charts of an author's page. Loaded before explorer.js, whose
// helpers (el, api, show, section, navigate, ...) these call.
"use strict";

const clusterHref = (id) => `#/cluster/${id}`;

function clusterName(c) {
  return c.label.length ? c.label.join(" · ") : `cluster ${c.id}`;
}

function yearsText(years) {
  return years === null ? "years unknown" : years.from === years.to ? String(years.from) : `${years.from}–${years.to}`;
}

// A number for a chart's axis: 1,200 rather than 1200.
const count = (n) => n.toLocaleString("en");

// Round steps for an axis from 0 to `max`: 1, 2 or 5 times a power of ten,
// about `wanted` of them.
function ticks(max, wanted) {
  const rough = Math.max(max / wanted, 1);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((m) => m * power).find((s) => s >= rough);
  const list = [];
  for (let t = 0; t <= max; t += step) list.push(t);
  return list;
}

// A bar chart of `rows` ([{year, ...}]) by year, the bar of each year as
// high as row[field]; years between the first and the last without a row
// get an empty bar. Each bar carries its year and value (data-year,
// data-value) and says both when hovered.
function yearChart(rows, field, what) {
  const width = 460, height = 200, left = 44, bottom = 22, top = 8, right = 6;
  if (rows.length === 0) return el("p", {class: "empty"}, `No ${what} with a known year.`);
  const byYear = new Map(rows.map((r) => [r.year, r[field]]));
  const first = rows[0].year, last = rows[rows.length - 1].year;
  const years = Array.from({length: last - first + 1}, (_, i) => first + i);
  const max = Math.max(1, ...rows.map((r) => r[field]));
  const x = (year) => left + (year - first) * (width - left - right) / years.length;
  const barWidth = Math.max(1, (width - left - right) / years.length - 1);
  const y = (value) => height - bottom - value * (height - bottom - top) / max;

  const svg = d3.create("svg").attr("class", "chart").attr("viewBox", [0, 0, width, height]).attr("role", "img")
    .attr("aria-label", `${what} per year, ${first} to ${last}`);
  const axis = svg.append("g").attr("class", "axis");
  for (const t of ticks(max, 4)) {
    axis.append("line").attr("x1", left).attr("x2", width - right).attr("y1", y(t)).attr("y2", y(t));
    axis.append("text").attr("x", left - 4).attr("y", y(t)).attr("dy", "0.32em").attr("text-anchor", "end")
      .text(count(t));
  }
  const every = Math.ceil(years.length / 8);  // at most eight year labels
  for (const year of years.filter((yr) => (yr - first) % every === 0)) {
    axis.append("text").attr("x", x(year) + barWidth / 2).attr("y", height - 6).attr("text-anchor", "middle")
      .text(year);
  }
  svg.append("g").attr("class", "bars").selectAll("rect").data(years).join("rect")
    .attr("data-year", (yr) => yr).attr("data-value", (yr) => byYear.get(yr) || 0)
    .attr("x", x).attr("width", barWidth)
    .attr("y", (yr) => y(byYear.get(yr) || 0)).attr("height", (yr) => y(0) - y(byYear.get(yr) || 0))
    .append("title").text((yr) => `${yr}: ${count(byYear.get(yr) || 0)} ${what}`);
  return svg.node();
}

function cutNote(shown, list, noun) {
  return list.truncated ? el("p", {class: "cut"}, `${shown} of ${count(list.total)} ${noun}`) : null;
}

// ---- The front page -------------------------------------------------------

async function homeView() {
  const [s, o] = await Promise.all([api("stats"), api("overview")]);
  document.title = "refgrove explorer";
  const map = el("div", {id: "cluster-map"});
  const papers = o.most_cited.papers, authors = o.top_authors.authors;
  show(el("h1", {}, "refgrove explorer"),
    el("p", {}, `${count(s.documents)} documents, ${count(s.authors)} authors, ${count(s.words)} distinct words. `,
       "Search by words (", el("code", {}, "graph*"), " for a prefix), by a key or by an author's name, ",
       "or look at the ", el("a", {href: "#/rank"}, "rankings"), "."),
    el("div", {class: "columns"},
      section("Documents per year", yearChart(o.years, "documents", "documents")),
      section("Citations per year", yearChart(o.years, "citations", "citations made"))),
    section("Research fronts", map,
      el("p", {class: "legend"}, "The clusters of the citation graph: a bubble per cluster, sized by its documents ",
         "and named by its most characteristic title words; lines weighted by the citations between two clusters · ",
         "click a bubble to open the cluster")),
    el("div", {class: "columns"},
      section("Most cited papers", paperList(papers, (p) => el("span", {class: "score"}, ` · ${citedText(p.citation_count)}`)),
              cutNote(papers.length, o.most_cited, "papers"), el("p", {}, el("a", {href: "#/rank"}, "All rankings"))),
      section("Authors with the highest h-index", authorRanking(authors), cutNote(authors.length, o.top_authors, "authors"))));
  const clusters = await api("clusters");
  drawClusterMap(map, clusters);
  if (clusters.truncated) map.append(cutNote(clusters.clusters.length, clusters, "clusters: the largest"));
}

function authorRanking(authors) {
  if (authors.length === 0) return el("p", {class: "empty"}, "none");
  return el("ol", {class: "top-authors"}, authors.map((a) =>
    el("li", {"data-author": a.id}, el("a", {href: authorHref(a.id)}, a.name),
       el("span", {class: "score"}, ` · h-index ${a.h_index} · ${count(a.documents)} documents · `,
          `${count(a.citations)} citations`))));
}

// A bubble's text: the cluster's two best words.
const labelOf = (c) => c.label.slice(0, 2).join(" · ") || `#${c.id}`;

// The clusters as bubbles (area by documents) pulled together by the
// citations between them; a click opens the cluster.
function drawClusterMap(container, map) {
  const width = 900, height = 420;
  if (map.clusters.length === 0) return container.replaceChildren(el("p", {class: "empty"}, "No clusters."));
  const nodes = map.clusters.map((c) => Object.assign({}, c));
  const links = map.links.map((l) => Object.assign({}, l));
  const largest = Math.max(...nodes.map((c) => c.size));
  const radius = (c) => 8 + 60 * Math.sqrt(c.size / largest);
  const heaviest = Math.max(1, ...links.map((l) => l.weight));

  const svg = d3.create("svg").attr("viewBox", [-width / 2, -height / 2, width, height]).attr("role", "img")
    .attr("aria-label", `the ${nodes.length} clusters of the citation graph`);
  const layer = svg.append("g");
  const link = layer.append("g").attr("class", "links").selectAll("line").data(links).join("line")
    .attr("stroke-width", (l) => 1 + 7 * Math.sqrt(l.weight / heaviest));
  link.append("title").text((l) => `${count(l.weight)} citations between clusters ${l.source} and ${l.target}`);
  const bubble = layer.append("g").attr("class", "bubbles").selectAll("g").data(nodes).join("g")
    .attr("class", "bubble").attr("data-cluster", (c) => c.id)
    .on("click", (c) => navigate(clusterHref(c.id)));
  bubble.append("circle").attr("r", radius).attr("fill", (c, i) => d3.schemeTableau10[i % 10]);
  bubble.append("text").attr("text-anchor", "middle").attr("dy", "0.32em")
    .text(labelOf);
  bubble.append("title").text((c) => `${clusterName(c)}: ${count(c.size)} documents, ${yearsText(c.years)}`);

  const simulation = d3.forceSimulation(nodes)
    .force("link", d3.forceLink(links).id((c) => c.id).distance((l) => radius(l.source) + radius(l.target) + 30)
      .strength((l) => 0.1 + 0.5 * l.weight / heaviest))
    .force("charge", d3.forceManyBody().strength(-200))
    .force("collide", d3.forceCollide().radius((c) => Math.max(radius(c), labelOf(c).length * 3.6) + 6))
    .force("x", d3.forceX().strength(0.06)).force("y", d3.forceY().strength(0.1));
  simulation.on("tick", () => {
    link.attr("x1", (l) => l.source.x).attr("y1", (l) => l.source.y)
      .attr("x2", (l) => l.target.x).attr("y2", (l) => l.target.y);
    bubble.attr("transform", (c) => `translate(${c.x},${c.y})`);
  });
  svg.call(d3.zoom().scaleExtent([0.3, 4]).on("zoom", () => layer.attr("transform", d3.event.transform)));
  container.replaceChildren(svg.node());
  window.addEventListener("hashchange", () => simulation.stop(), {once: true});
}

// ---- A cluster ------------------------------------------------------------

async function clusterView(id) {
  const c = await api(`cluster/${id}`);
  document.title = `${clusterName(c)} – refgrove explorer`;
  const drawing = el("div", {id: "timeline"});
  show(el("h1", {}, `Cluster ${c.id}: ${clusterName(c)}`),
    el("p", {class: "meta"}, `${count(c.size)} documents · ${yearsText(c.years)} · `,
       c.main_path.length ? `${c.main_path.length} on the main path` : "off the main path"),
    section("Timeline", drawing,
      el("p", {class: "legend"}, "Each paper at the height of its year (earliest at the top), sized by its citations; ",
         "arrows point to the cited paper; the main path of the whole set in red where it passes through this cluster · ",
         "click a paper to open it")),
    el("div", {class: "columns"},
      section("Top papers", paperList(c.top, (p) => el("span", {class: "score"}, ` · ${citedText(p.citation_count)}`))),
      section("Documents per year", yearChart(c.timeline, "documents", "documents"))));
  drawTimeline(drawing, c);
  if (c.truncated) {
    drawing.append(el("p", {class: "cut"}, `${c.members.length} of ${count(c.total)} papers drawn: `,
                      "those on the main path, then the most cited."));
  }
}

// The cluster's papers, each at the height of its year (unknown years in a
// row below), spread sideways by a force layout; citations as arrows, the
// main path's papers ringed and its steps drawn in red.
function drawTimeline(container, c) {
  const width = 900, top = 20, left = 56;
  const nodes = c.members.map((p) => Object.assign({}, p));
  if (nodes.length === 0) return container.replaceChildren(el("p", {class: "empty"}, "No papers."));
  const years = nodes.map((p) => p.year).filter((y) => y !== null);
  const first = Math.min(...years), last = Math.max(...years);
  const span = years.length ? last - first : 0;
  const rowHeight = Math.max(28, Math.min(60, 480 / (span + 1)));
  const unknownRow = years.length ? span + 1.5 : 0;
  const height = top * 2 + rowHeight * (nodes.some((p) => p.year === null) ? unknownRow + 1 : span + 1);
  const yOf = (p) => top + rowHeight * (p.year === null ? unknownRow : p.year - first) + rowHeight / 2;
  const onPath = new Set(c.main_path);
  const pathStep = new Set(c.main_path.slice(1).map((did, i) => `${c.main_path[i]}>${did}`));
  const links = c.links.map((l) => Object.assign({onPath: pathStep.has(`${l.source}>${l.target}`)}, l));
  const radius = (p) => 4 + 2 * Math.sqrt(p.citation_count);

  const svg = d3.create("svg").attr("viewBox", [0, 0, width, height]).attr("role", "img")
    .attr("aria-label", `the ${nodes.length} papers of cluster ${c.id} by year`);
  addArrowMarker(svg, "timeline-arrow");
  const axis = svg.append("g").attr("class", "axis");
  for (let year = first; years.length && year <= last; ++year) {
    const y = yOf({year});
    axis.append("line").attr("x1", left).attr("x2", width).attr("y1", y).attr("y2", y);
    axis.append("text").attr("x", left - 6).attr("y", y).attr("dy", "0.32em").attr("text-anchor", "end").text(year);
  }
  if (nodes.some((p) => p.year === null)) {
    axis.append("text").attr("x", left - 6).attr("y", yOf({year: null})).attr("dy", "0.32em")
      .attr("text-anchor", "end").text("?");
  }
  const link = svg.append("g").attr("class", "links").selectAll("line").data(links).join("line")
    .classed("main-path", (l) => l.onPath).attr("marker-end", "url(#timeline-arrow)");
  const node = svg.append("g").attr("class", "nodes").selectAll("circle").data(nodes).join("circle")
    .attr("data-did", (p) => p.did).attr("r", radius).classed("main-path", (p) => onPath.has(p.did))
    .on("click", (p) => navigate(paperHref(p.did)))
    .on("mouseover", (p) => showTooltip(`${p.title || "DID " + p.did} (${yearText(p.year)}, cited ${p.citation_count})`))
    .on("mousemove", () => moveTooltip(d3.event))
    .on("mouseout", hideTooltip);
  node.append("title").text((p) => p.title || `DID ${p.did}`);
  nodes.forEach((p, i) => {  // spread over the width at first: the forces only settle them
    p.fy = yOf(p);
    p.x = left + (width - left) * (i + 0.5) / nodes.length;
  });

  const simulation = d3.forceSimulation(nodes)
    .force("link", d3.forceLink(links).id((p) => p.did).strength(0.03))
    .force("charge", d3.forceManyBody().strength(-80))
    .force("collide", d3.forceCollide().radius((p) => radius(p) + 3))
    .force("x", d3.forceX(left + (width - left) / 2).strength(0.01));
  const clampX = (p) => Math.max(left + radius(p), Math.min(width - radius(p), p.x));
  simulation.on("tick", () => {
    for (const p of nodes) p.x = clampX(p);
    placeArrows(link, radius);
    node.attr("cx", (p) => p.x).attr("cy", (p) => p.y);
  });
  container.replaceChildren(svg.node());
  window.addEventListener("hashchange", () => simulation.stop(), {once: true});
}

// ---- An author's impact ---------------------------------------------------

function impactPanel(impact) {
  return el("div", {class: "impact"},
    el("p", {class: "figures"}, `h-index ${impact.h_index} · ${count(impact.documents)} documents · `,
       `${count(impact.citations)} citations · ${yearsText(impact.years)}`),
    section("Citations per year", yearChart(impact.citations_by_year, "citations", "citations received")));
}
