// The desk: monitors, tiles, meters and buttons.
import {
  byId, clock, element, fixed, isNumber, load, now, object, objects, setText, sleep, untilVisible, words,
} from "/basics.js";
import { command, doubleTapMs, isUnlocked, say } from "/commands.js";

const oldProgramMs = 3000;         // pictures of program come 5 times a second
const oldTilesMs = 6000;           // pictures of the channels come once a second
const stopAgainMs = 3000;
const meterFloorDb = -60;
const cell = { width: 240, height: 135, columns: 4, media: 8, stages: 4, firstMedia: 16, firstStage: 256 };

// ---- pictures ----

let programMs = -Infinity, tilesMs = -Infinity;
let programMissing = "Waiting for the program picture";
let link = "connecting";

export function showLink(state) {
  link = state;
  if (state !== "up") showLevels({});
  showAge();
}

document.addEventListener("visibilitychange", () => {
  if (document.hidden) {
    // Pictures and levels are old when the page is seen again.
    programMs = tilesMs = -Infinity;
    showLevels({});
  }
  showAge();
});

function showAge() {
  const ageMs = now() - programMs;
  const stale = link !== "up" || ageMs > oldProgramMs;
  document.body.classList.toggle("stale", stale);
  document.body.classList.toggle("tiles-stale", link !== "up" || now() - tilesMs > oldTilesMs);
  const note = byId("picture-note");
  note.hidden = !stale;
  if (!stale) setText(note, "");
  else if (link === "retry" || link === "down") setText(note, "Connection lost. This is not live.");
  else if (programMissing) setText(note, programMissing);
  else if (ageMs === Infinity) setText(note, "Waiting for the program picture");
  else setText(note, "No new picture for " + Math.floor(ageMs / 1000) + " s. This is not live.");
}

// One request after the other: a slow phone gets fewer pictures, and none that is late.
async function followPictures(path, show, missing) {
  let after = null, shown = null;
  for (;;) {
    await untilVisible();
    let pauseMs = 0;
    try {
      const query = after === null ? "" : "?after=" + encodeURIComponent(after);
      const { status, number, beganMs, body } = await load(path + query, "blob");
      if (body === null) {
        // No newer picture came: the next answer tells whether the numbers began anew with another console.
        after = null;
        if (status !== 304) {
          missing(status);
          pauseMs = 1000;
        }
      } else if (number !== null && number === shown) {
        pauseMs = 500;
      } else {
        await show(body, beganMs);
        shown = after = number;
        if (number === null) pauseMs = 200;
      }
    } catch {
      after = null;
      pauseMs = 1000;
    }
    await sleep(pauseMs);
  }
}

let programUrl = "";
async function showProgramPicture(blob, beganMs) {
  const picture = byId("program-picture"), oldUrl = programUrl;
  programUrl = URL.createObjectURL(blob);
  picture.src = programUrl;
  await picture.decode().finally(() => URL.revokeObjectURL(oldUrl));
  picture.hidden = false;
  programMissing = "";
  // A picture that took long to arrive is as old as its first byte.
  programMs = beganMs;
  showAge();
}

function missProgramPicture(status) {
  programMissing = status === 503 ? "There is no program picture yet" : "No program picture (" + status + ")";
  byId("program-picture").hidden = true;
  programMs = -Infinity;
  showAge();
}

// The place of a channel in the grid of pictures; -1 for a channel that has none there.
function cellOf(channel) {
  const media = channel - cell.firstMedia, stage = channel - cell.firstStage;
  if (media >= 0 && media < cell.media) return media;
  return stage >= 0 && stage < cell.stages ? stage + cell.media : -1;
}

async function showChannelPictures(blob, beganMs) {
  const grid = await createImageBitmap(blob);
  for (const tile of tiles.values()) {
    if (tile.cell < 0 || !tile.inUse) continue;
    const x = tile.cell % cell.columns * cell.width, y = Math.floor(tile.cell / cell.columns) * cell.height;
    tile.canvas.drawImage(grid, x, y, cell.width, cell.height, 0, 0, cell.width, cell.height);
  }
  grid.close();
  tilesMs = beganMs;
  showAge();
}

// ---- tally ----

const tiles = new Map();
const channelNames = new Map();
let takeNames = [];
let lastTake = 0;

function makeTile(id) {
  const button = element("button", "tile");
  button.type = "button";
  button.dataset.channel = id;
  const shot = element("span", "shot"), canvas = element("canvas"), hint = element("span", "hint");
  const mark = element("span", "mark"), levels = element("span", "levels");
  canvas.width = cell.width;
  canvas.height = cell.height;
  mark.append(element("span", "pgm", "PGM"), element("span", "pvm", "PVM"));
  levels.append(element("i"), element("i"));
  shot.append(canvas, hint, mark, levels);
  const texts = element("span", "texts"), name = element("span", "name"), label = element("span", "label");
  name.dir = label.dir = "auto";
  texts.append(name, label);
  button.append(shot, texts);
  button.addEventListener("click", () => command("/select/" + id, button, "select " + id));
  const bars = [...levels.children];
  return { button, name, label, hint, canvas: canvas.getContext("2d"), bars, cell: cellOf(id), inUse: false };
}

function fillTile(tile, channel, tally) {
  const name = words(channel.name, "Channel " + channel.id), label = words(channel.label) || words(channel.kind);
  const onProgram = channel.id === tally.program, onPreview = channel.id === tally.preview;
  tile.inUse = channel.inUse === true;
  setText(tile.name, name);
  setText(tile.label, tile.inUse ? label : "");
  const classes = tile.button.classList;
  classes.toggle("on-program", onProgram);
  classes.toggle("on-preview", onPreview);
  classes.toggle("no-picture", !tile.inUse || tile.cell < 0);
  setText(tile.hint, !tile.inUse ? "Empty" : tile.cell < 0 ? "No picture" : "");
  tile.button.setAttribute("aria-pressed", String(onPreview));
  const place = (onProgram ? ", on program" : "") + (onPreview ? ", on preview" : "") + (tile.inUse ? "" : ", empty");
  tile.button.setAttribute("aria-label", name + (tile.inUse && label ? ", " + label : "") + place);
  tile.button.title = name + (tile.inUse && label ? " \u2013 " + label : "");
  channelNames.set(channel.id, tile.inUse && label ? name + " \u00b7 " + label : name);
}

export function showTally(tally) {
  if (Number.isInteger(tally.lastTake) && tally.lastTake >= 0 && tally.lastTake < 4) lastTake = tally.lastTake;
  const channels = objects(tally.channels).filter(channel => isNumber(channel.id));
  const ids = [...new Set(channels.map(channel => channel.id))];
  // Tiles are kept while the channels stay, so that a finger and the keyboard's focus stay on theirs.
  if (ids.join() !== [...tiles.keys()].join()) {
    tiles.clear();
    for (const id of ids) tiles.set(id, makeTile(id));
    byId("tiles").classList.toggle("few", ids.length <= 4);
    byId("tiles").replaceChildren(...[...tiles.values()].map(tile => tile.button));
  }
  channelNames.clear();
  for (const channel of channels) fillTile(tiles.get(channel.id), channel, tally);
  byId("no-channels").hidden = tiles.size > 0;
  const program = channelNames.get(tally.program) || "\u2013";
  setText(byId("program-name"), program);
  setText(byId("preview-name"), channelNames.get(tally.preview) || "\u2013");
  byId("program-picture").alt = "Program: " + program;
  document.title = "Korvia \u2013 " + program;
  showPosition(tally.switchPosition);
  takeNames = [0, 1, 2, 3].map(index => words(object(objects(tally.takes).find(take => take.index === index)).name));
  showTakes();
}

function showPosition(position) {
  const line = byId("switch-position");
  line.hidden = !(position > 0 && position < 1);
  if (!line.hidden) line.style.setProperty("--position", position);
}

function showTakes() {
  for (let index = 0; index < 4; ++index) {
    const button = byId("take-" + index), name = takeNames[index] || "Take " + (index + 1);
    if (button.textContent !== name) {
      const text = element("span", "", name);
      text.dir = "auto";
      button.replaceChildren(text);
    }
    button.title = "Take the channel on preview with " + name;
    button.setAttribute("aria-current", String(index === lastTake));
  }
  setText(byId("take").querySelector("small"), takeNames[lastTake] || "");
}

export function announceTake(take) {
  setText(byId("announcement"), (channelNames.get(take.to) || "Another channel") + " is on program.");
}

// ---- levels ----

const loudness = [...document.querySelectorAll("#loudness [data-value]")];
const busMeters = [...document.querySelectorAll(".meter-pair")];
let loudnessShownMs = -Infinity;

const levelPart = db => isNumber(db) ? Math.min(1, Math.max(0, 1 - db / meterFloorDb)) : 0;
function setBars(bars, pair) {
  const values = Array.isArray(pair) ? pair : [];
  bars.forEach((bar, side) => bar.style.setProperty("--level", levelPart(values[side]).toFixed(3)));
}

export function showLevels(levels) {
  for (const meter of busMeters) setBars([...meter.querySelectorAll(".bar")], levels[meter.dataset.bus]);
  const channels = object(levels.channels);
  for (const [id, tile] of tiles) setBars(tile.bars, channels[id]);
  // Figures that change faster cannot be read.
  if (now() - loudnessShownMs < 300 && link === "up") return;
  loudnessShownMs = now();
  for (const value of loudness) setText(value, fixed(levels[value.dataset.value], 1));
  for (const meter of busMeters) {
    const pair = Array.isArray(levels[meter.dataset.bus]) ? levels[meter.dataset.bus].filter(isNumber) : [];
    meter.setAttribute("aria-valuenow", String(Math.round(Math.min(0, Math.max(meterFloorDb, ...pair)))));
  }
}

function drawMeterScale() {
  const scale = document.querySelector(".meter-scale");
  for (const db of [-60, -48, -36, -24, -12, -6, 0]) {
    const mark = element("span", "", String(db));
    mark.style.left = levelPart(db) * 100 + "%";
    scale.append(mark);
  }
}

// ---- record and stream ----

const idle = () => ({ on: false, waiting: false, state: "", reason: "", armed: 0, armedMs: 0, report: {} });
const outputs = { record: idle(), stream: idle() };

// To end a recording or a stream by accident would be worse than a tap more, and a double tap is such an accident.
function tapOutput(name) {
  const output = outputs[name];
  if (!isUnlocked() || !output.on) return void command("/" + name + "/start", byId(name), name);
  if (!output.armed) {
    output.armed = setTimeout(() => disarm(output), stopAgainMs);
    output.armedMs = now();
    return showOutputButtons();
  }
  if (now() - output.armedMs < doubleTapMs) return;
  disarm(output);
  command("/" + name + "/stop", byId(name), name);
}

function disarm(output) {
  clearTimeout(output.armed);
  output.armed = 0;
  showOutputButtons();
}

export function showOutputEvent(event) {
  for (const [name, output] of Object.entries(outputs)) {
    const told = object(event[name]);
    output.on = told.on === true;
    output.waiting = told.waiting === true;
    const state = words(told.state), reason = words(told.reason);
    // Not a failure that the page finds when it is opened.
    if (state === "Failed" && reason && output.state && output.state !== state)
      say((name === "record" ? "The recording" : "The stream") + " has failed: " + reason);
    output.state = state;
    output.reason = reason;
    // Until the engine has answered, the report may still describe the output before.
    if (output.waiting) output.report = {};
    if (!output.on && output.armed) disarm(output);
  }
  showOutputButtons();
}

function isAlert(output) {
  const room = output.report.roomSeconds;
  return output.state === "Failed" || words(output.report.warning) !== "" || (isNumber(room) && room < 600) ||
    objects(output.report.targets).some(target => target.state === "Lost" || target.state === "Failed");
}

function outputText(output, time) {
  if (output.armed) return "Tap again to stop";
  if (output.waiting) return output.on ? "Starting\u2026" : "Stopping\u2026";
  if (output.state === "Failed") return "Failed";
  return output.on ? time : "Start";
}

export function showOutputReports(slots) {
  for (const [name, output] of Object.entries(outputs)) output.report = output.waiting ? {} : object(slots[name]);
  showOutputButtons();
}

function showOutputButtons() {
  for (const [name, output] of Object.entries(outputs)) {
    const time = clock(output.report.writtenMs / 1000);
    const text = outputText(output, time);
    const button = byId(name), lamp = byId(name + "-lamp");
    setText(button.querySelector("small"), text);
    button.setAttribute("aria-pressed", String(output.on));
    button.title = output.on ? "Two taps stop it" : output.reason;
    button.toggleAttribute("data-armed", output.armed !== 0);
    button.classList.toggle("waiting", output.waiting);
    button.toggleAttribute("data-alert", isAlert(output));
    lamp.hidden = !output.on;
    lamp.toggleAttribute("data-alert", isAlert(output));
    setText(lamp.querySelector(".clock"), time);
  }
}

// ---- start ----

function takeWith(index, button) {
  if (!command("/take/" + index, button, "take")) return;
  lastTake = index;
  showTakes();
}

function startActions() {
  const onTap = (id, act) => byId(id).addEventListener("click", () => act(byId(id)));
  for (let index = 0; index < 4; ++index) onTap("take-" + index, button => takeWith(index, button));
  onTap("take", button => takeWith(lastTake, button));
  onTap("cut", button => command("/cut", button, "take"));
  for (const name of ["record", "stream"]) onTap(name, () => tapOutput(name));
}

export function startDesk() {
  startActions();
  drawMeterScale();
  showTakes();
  showOutputButtons();
  setInterval(showAge, 500);
  followPictures("/program.jpg", showProgramPicture, missProgramPicture);
  followPictures("/channels.jpg", showChannelPictures, () => {});
}
