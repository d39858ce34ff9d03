// The figures below the desk: outputs, engine, income server, everything that the console tells, and its log.
import {
  byId, clock, element, fixed, isNumber, isObject, load, object, objects, sleep, untilVisible, words,
} from "/basics.js";
import { showOutputReports } from "/desk.js";

// ---- outputs, engine, income server ----

const stateWords = {
  Idle: ["off", "muted"], Starting: ["starting", "warn"], Running: ["running", "good"], Failed: ["failed", "bad"],
  Finished: ["ended", "muted"], Connecting: ["connecting", "warn"], Up: ["up", "good"], Lost: ["lost", "bad"],
};

function stateOf(report) {
  const state = words(report.state);
  const [text, look] = Object.hasOwn(stateWords, state) ? stateWords[state] : [state || "not known", "muted"];
  if (state === "Up") return [text + " for " + clock(report.upSeconds), look];
  if (state !== "Lost") return [text, look];
  return [text + (report.retrySeconds > 0 ? ", retry in " + report.retrySeconds + " s" : ", retrying"), look];
}

function outputRow(name, report, details, className = "") {
  const row = element("div", "output-row " + className), [text, look] = stateOf(report);
  const title = element("span", "name", name), rest = element("span", "details", details.filter(Boolean).join(", "));
  title.dir = "auto";
  for (const reason of [report.reason, report.warning].map(value => words(value)).filter(Boolean)) {
    if (rest.textContent) rest.append(" \u2013 ");
    rest.append(element("span", "reason", reason));
  }
  row.append(title, element("span", "state " + look, text));
  if (rest.textContent) row.append(rest);
  return row;
}

function targetRow(report, className) {
  const details = [report.kbps > 0 ? fixed(report.kbps, 0, " kbit/s") : ""];
  return outputRow(words(report.name, "Target"), report, details, className);
}

function slotRows(name, report) {
  const positive = (value, text) => isNumber(value) && value > 0 ? text : "";
  const details = report.state === "Idle" ? [] : [
    positive(report.writtenMs, clock(report.writtenMs / 1000)),
    positive(report.writtenBytes, fixed(report.writtenBytes / 1e6, 1, " MB")),
    words(report.file),
    isNumber(report.roomSeconds) ? "room for " + Math.floor(report.roomSeconds / 60) + " min" : "",
    positive(report.verifiedMs, "verified to " + clock(report.verifiedMs / 1000)),
    positive(report.droppedFrames, report.droppedFrames + " frames dropped"),
  ];
  return [outputRow(name, report, details), ...objects(report.targets).map(target => targetRow(target, "target"))];
}

function outputRows(section) {
  return [...slotRows("Record", object(section.record)), ...slotRows("Stream", object(section.stream)),
    ...objects(section.devices).map(device => targetRow(device))];
}

function figureList(rows) {
  const list = element("dl", "figures");
  for (const [name, value] of rows) list.append(element("dt", "", name), element("dd", "", value));
  return [list];
}

function engineRows(engine, uptimeSeconds) {
  const tick = object(engine.tick);
  return figureList([
    ["State", engine.open === false ? "closed" : "open"],
    ["Frames a second", fixed(engine.fps, 2)],
    ["Late ticks", fixed(engine.lateTicks, 0)],
    ["Repeated frames", fixed(engine.repeatedFrames, 0)],
    ["CPU load", fixed(engine.cpuLoad * 100, 0, " %")],
    ["Tick p50 / p99 / max", [tick.p50Ms, tick.p99Ms, tick.maxMs].map(ms => fixed(ms, 1)).join(" / ") + " ms"],
    ["Console up", clock(uptimeSeconds)],
  ]);
}

function publisherRow(publisher) {
  const players = words(publisher.players, "0") + (publisher.players === 1 ? " player" : " players");
  const details = [words(publisher.addr), fixed(publisher.kbps, 0, " kbit/s"), players];
  const name = words(publisher.app) + "/" + words(publisher.name);
  return outputRow(name, { state: "Up", upSeconds: publisher.seconds }, details);
}

function incomeRows(income) {
  const isRunning = income.running === true, publishers = objects(income.publishers);
  const rows = [["State", isRunning ? "running" : words(income.failure) || "not running"]];
  if (isRunning) rows.push(["RTMP", words(income.address) + ":" + words(income.rtmpPort)]);
  rows.push(["Publishers", String(publishers.length)]);
  return [...figureList(rows), ...publishers.map(publisherRow)];
}

// Nothing is rebuilt while nothing changed.
const filled = new Map();
function fill(id, source, make) {
  const text = JSON.stringify(source);
  if (filled.get(id) === text) return;
  filled.set(id, text);
  byId(id).classList.remove("empty");
  byId(id).replaceChildren(...make());
}

function showStatus(status) {
  const sections = object(status.sections), { uptimeSeconds } = status;
  const slots = object(sections.outputs), engine = object(sections.engine), income = object(sections.incomeServer);
  showOutputReports(slots);
  fill("outputs", slots, () => outputRows(slots));
  fill("engine", [engine, Math.floor(uptimeSeconds)], () => engineRows(engine, uptimeSeconds));
  fill("income", income, () => incomeRows(income));
  if (!byId("figures").open) return;
  fill("sections", sections, () => Object.entries(sections).map(([name, section]) => sectionOf(name, section)));
}

export async function followStatus() {
  for (let round = 0; ; ++round) {
    await untilVisible();
    try {
      const { body } = await load("/status.json", "json", 5000);
      if (body === null) throw new Error("no status");
      showStatus(object(body));
      if (byId("log").open && round % 2 === 0) showLog((await load("/log.txt", "text", 5000)).body);
      document.body.classList.remove("status-stale");
    } catch {
      document.body.classList.add("status-stale");
    }
    await sleep(1000);
  }
}

// ---- all figures ----

// "lateTicks" reads as "Late ticks", "rtmpPort" as "RTMP port".
const written = { mib: "MiB", ms: "ms", dbtp: "dBTP" };
for (const word of "pgm pvm rtmp http fps url id cpu ip lufs".split(" ")) written[word] = word.toUpperCase();
function title(key) {
  const parts = String(key).replace(/_/g, " ").replace(/([a-z0-9])([A-Z])/g, "$1 $2").toLowerCase().split(" ");
  const text = parts.map(part => Object.hasOwn(written, part) ? written[part] : part).join(" ");
  return text.charAt(0).toUpperCase() + text.slice(1);
}

function valueText(value) {
  if (value === null || value === undefined || value === "") return "\u2013";
  if (typeof value === "boolean") return value ? "yes" : "no";
  if (isNumber(value)) return String(Math.round(value * 1000) / 1000);
  return typeof value === "object" ? JSON.stringify(value) : String(value);
}

const isFilled = value => isObject(value) && Object.keys(value).length > 0;
const hasParts = value => isFilled(value) || objects(value).length > 0;

function fillCell(cell, value) {
  cell.append(hasParts(value) ? tableOf(value) : valueText(value));
}

function headOf(text, scope) {
  const head = element("th", "", text);
  head.scope = scope;
  return head;
}

// Members that are all objects, such as the stages of the engine or the targets of the stream, share their columns.
function familyTable(members, isList) {
  const keys = [...new Set(members.flatMap(([, member]) => Object.keys(member)))];
  const table = element("table", "family"), heads = table.createTHead().insertRow(), rows = table.createTBody();
  if (!isList) heads.insertCell();
  for (const key of keys) heads.append(headOf(title(key), "col"));
  for (const [name, member] of members) {
    const row = rows.insertRow();
    if (!isList) row.append(headOf(title(name), "row"));
    for (const key of keys) fillCell(row.insertCell(), Object.hasOwn(member, key) ? member[key] : "");
  }
  return table;
}

// A table for whatever the console tells; what has parts becomes a table in a cell.
function tableOf(value) {
  const entries = Object.entries(value);
  if (entries.every(([, part]) => isFilled(part))) return familyTable(entries, Array.isArray(value));
  const table = element("table");
  for (const [key, part] of entries) {
    const row = table.insertRow();
    row.append(headOf(title(key), "row"));
    fillCell(row.insertCell(), part);
  }
  return table;
}

function sectionOf(name, value) {
  const made = element("div");
  made.append(element("h2", "", title(name)), tableOf(isObject(value) ? value : { value }));
  return made;
}

// ---- log ----

let logLines = [];
function showLog(text) {
  if (typeof text !== "string") return;
  const lines = text.replace(/\n$/, "").split("\n"), box = byId("log-lines");
  const atEnd = box.scrollHeight - box.scrollTop - box.clientHeight < 24;
  // Lines that stay are kept, so that a selection and the place of reading stay.
  let gone = 0;
  while (gone < logLines.length && !logLines.slice(gone).every((line, index) => line === lines[index])) ++gone;
  for (let index = 0; index < gone; ++index) box.firstChild.remove();
  let look = box.lastChild ? box.lastChild.className : "";
  for (const line of lines.slice(logLines.length - gone)) {
    const level = /^\S+ \S+ (\w+) /.exec(line);
    // Further lines of a message are indented and have no level of their own.
    if (level) look = { warning: "warn", critical: "bad", fatal: "bad", debug: "muted" }[level[1]] || "";
    box.append(element("div", look, line));
  }
  logLines = lines;
  if (atEnd) box.scrollTop = box.scrollHeight;
}
