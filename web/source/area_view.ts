// An area: both views of it, its report, the explanation of a direction, and the editing of its
// points. The text of the file is the state: every edit makes a new text, and undo restores the old one.
import type { Client } from "./client";
import { button, complain, counted, download, element, printable, say, svg, updateContent } from "./dom";
import { WorkerEnded } from "./protocol";
import type { AreaPicture, AreaReport, DirectionAt, Explanation, Place, View } from "./protocol";

const SIZES: Record<View, [number, number]> = { plane: [720, 360], zenith: [360, 360] };
const TITLES: Record<View, string> = {
  plane: "Hz and V: Hz from 0 on the left to a full turn, V from the zenith at the top",
  zenith: "As seen from the zenith: north is up, the nadir outside",
};
const INSERT = 0;
const MOVE = 1;
const REMOVE = 2;
const STEPS = 3;
const MARGIN = 14;
/** More corners than these are drawn as edges only. */
const MOST_CORNERS = 2000;
/** The rows of a table that are shown at once. */
const MOST_ROWS = 200;

/** The numbers of one direction, after the two numbers that count them. */
const DIRECTION = 7;
function answers(directions: Float64Array | null): Float64Array {
  return directions ?? new Float64Array(2);
}

interface At extends DirectionAt {
  inside: boolean;
}

let keys = 0;

export class AreaView {
  readonly root: HTMLElement;
  private readonly undone: string[] = [];
  private readonly history: string[] = [];
  private starts: number;
  private text: string;
  private savedText: string;
  private report!: AreaReport;
  private isDrawing = false;
  private chosen = -1;
  /** The first rows that the tables of the points and of the outline show. */
  private firstPoint = 0;
  private firstCorner = 0;
  /** The edits, one after the other: each begins with the area that the previous one left. */
  private edits: Promise<void> = Promise.resolve();
  private explained: Explanation | null = null;
  private directions: Float64Array | null = null;
  private directionFile: Uint8Array | null = null;
  private pointerOrder = 0;
  private readonly pictures = {} as Record<View, SVGSVGElement>;
  private readonly pointer = element("p", { class: "pointer" }, "Point at a view to see the direction there.");
  private readonly answer = element("section", { class: "answer", "aria-label": "Explanation", "aria-live": "polite" });
  private readonly facts = element("section", { class: "facts", "aria-label": "Area" });
  private readonly pointTable = element("section", { class: "points", "aria-label": "Points" });
  private readonly undoButton = button("Undo", () => void this.undo());
  private readonly redoButton = button("Redo", () => void this.undo(this.undone, this.history));
  private readonly drawButton = button("Draw corners", () => this.setDrawing(!this.isDrawing), { "aria-pressed": "false" });
  private readonly unit = element("select", { "aria-label": "Unit of angles" },
    ...["rad", "deg", "gon"].map((name) => element("option", { value: name }, name)));
  private readonly hz = element("input", { name: "hz", type: "number", step: "any", value: 0 });
  private readonly v = element("input", { name: "v", type: "number", step: "any", value: 0 });

  /** Throws if the text is not an area file; the message says where and why. */
  static async open(client: Client, name: string, text: string): Promise<AreaView> {
    const key = ++keys;
    const report = await client.ask<AreaReport>("openArea", key, text, name);
    return new AreaView(client, key, name, text, report);
  }

  private constructor(
    private readonly client: Client,
    private readonly key: number,
    private readonly name: string,
    text: string,
    report: AreaReport,
  ) {
    this.text = text;
    this.savedText = text;
    this.starts = client.starts;
    this.report = report;
    const views = (["plane", "zenith"] as const).map((view) => this.makeView(view));
    const csv = element("input", { type: "file", accept: ".csv,.txt", "aria-label": "Directions from CSV",
      change: () => { const [file] = csv.files ?? []; if (file) void this.addDirections(file); csv.value = ""; } });
    this.unit.addEventListener("change", () => void this.convert());
    this.root = element("div", { class: "area" },
      element("header", {}, element("h2", {}, printable(name)),
        element("div", { class: "bar" },
          this.drawButton, this.undoButton, this.redoButton,
          button("Save area file", () => void this.inOrder(async () => this.save())),
          element("label", {}, "Unit ", this.unit),
          element("label", {}, "Directions from CSV ", csv))),
      this.pointer,
      element("div", { class: "pictures" }, ...views),
      element("form", { class: "bar ask", submit: (event: Event) => { event.preventDefault(); void this.explain(this.hz.valueAsNumber, this.v.valueAsNumber); } },
        element("label", {}, "Hz ", this.hz),
        element("label", {}, "V ", this.v),
        element("button", { type: "submit" }, "Explain this direction"),
        button("Add as last point", () => void this.add(this.hz.valueAsNumber, this.v.valueAsNumber))),
      this.answer, this.facts, this.pointTable);
  }

  get hasUnsaved(): boolean {
    return this.text !== this.savedText;
  }

  load(): Promise<void> {
    return this.show(this.report);
  }

  restart(): Promise<void> {
    return this.inOrder(() => this.set(this.text));
  }

  close(): void {
    this.pointerOrder++;
    void this.client.ask("closeArea", this.key);
  }

  /** Shows the directions of a CSV file as points. */
  async addDirections(file: File): Promise<void> {
    try {
      this.directionFile = new Uint8Array(await file.arrayBuffer());
      await this.answerDirections();
      const [count = 0, inside = 0] = this.directions ?? [];
      const shown = (answers(this.directions).length - 2) / DIRECTION;
      say(`${printable(file.name)}: ${counted(count, "direction")}, ${inside} inside, ${count - inside} outside.` +
        (shown < count ? ` The first ${shown} are drawn.` : ""));
    } catch (error) {
      this.directionFile = null;
      complain(error, printable(file.name));
    }
    this.drawMarks();
  }

  private async answerDirections(): Promise<void> {
    this.directions = this.directionFile
      ? await this.ask<Float64Array>("directions", this.directionFile)
      : null;
  }

  private async ask<Result>(operation: string, ...values: unknown[]): Promise<Result> {
    if (!this.isOpen) await this.openIn(this.text);
    return this.client.ask<Result>(operation, this.key, ...values);
  }

  /** Whether the worker has the area: a restarted one has none. */
  private get isOpen(): boolean {
    return this.starts === this.client.starts;
  }

  private async openIn(text: string): Promise<AreaReport> {
    const { starts } = this.client;
    const report = await this.client.ask<AreaReport>("openArea", this.key, text, this.name);
    this.starts = starts;
    return report;
  }

  /** Shows another text of the area. Throws, and changes nothing, if the module refuses it. */
  private async set(text: string, accepted = () => undefined as unknown): Promise<void> {
    const report = await this.openIn(text);
    accepted();
    this.text = text;
    await this.show(report);
  }

  private async show(report: AreaReport): Promise<void> {
    this.report = report;
    this.chosen = Math.min(this.chosen, report.points.length - 1);
    if (this.firstCorner >= report.outline.length) this.firstCorner = 0;
    const picture = await this.ask<AreaPicture>("areaPicture").catch((error: unknown) => {
      if (error instanceof WorkerEnded) throw error;
      complain(error);
    });
    await this.answerDirections().catch(() => undefined);
    if (this.explained) {
      this.explained = await this.ask<Explanation>("explain", this.explained.hz, this.explained.v);
    }
    this.setControls();
    for (const view of ["plane", "zenith"] as const) {
      if (picture) this.drawPaths(view, picture);
    }
    this.drawMarks();
    this.tell();
    this.tellPoints();
    this.tellAnswer();
  }

  private makeView(view: View): HTMLElement {
    const [width, height] = SIZES[view];
    const place = (event: PointerEvent): Place => {
      const box = picture.getBoundingClientRect();
      const scale = (width + 2 * MARGIN) / box.width;
      return [(event.clientX - box.left) * scale - MARGIN, (event.clientY - box.top) * scale - MARGIN];
    };
    const picture = svg("svg", {
      viewBox: `${-MARGIN} ${-MARGIN} ${width + 2 * MARGIN} ${height + 2 * MARGIN}`,
      role: "img",
      "aria-label": TITLES[view],
      pointermove: (event: PointerEvent) => void this.point(view, place(event)),
      pointerdown: (event: PointerEvent) => void this.press(view, place, event),
    });
    this.pictures[view] = picture;
    return element("figure", {}, picture, element("figcaption", {}, TITLES[view]));
  }

  private drawPaths(view: View, picture: AreaPicture): void {
    const [width, height] = SIZES[view];
    const paths = picture[view];
    const clip = `clip-${view}`;
    const frame = view === "plane"
      ? svg("rect", { x: 0, y: 0, width, height, class: "frame" })
      : svg("circle", { cx: width / 2, cy: height / 2, r: width / 2, class: "frame" });
    this.pictures[view].replaceChildren(
      svg("defs", {}, svg("clipPath", { id: clip }, frame.cloneNode() as SVGElement)),
      frame,
      ...this.graticule(view),
      svg("g", { "clip-path": `url(#${clip})` },
        svg("path", { d: paths.inside, class: "inside" }),
        svg("path", { d: paths.lowest, class: "lowest" }),
        svg("path", { d: paths.bounds, class: "bounds" }),
        svg("path", { d: paths.edges, class: "edge" }),
        svg("path", { d: paths.faultyEdges, class: "edge faulty" })),
      svg("g", { class: "marks" }),
    );
  }

  /** Every eighth of a turn. */
  private graticule(view: View): SVGElement[] {
    const [width, height] = SIZES[view];
    const { fullTurn, unit } = this.report;
    const label = (eighth: number) => String(Number(((fullTurn / 8) * eighth).toPrecision(5)));
    const marks: SVGElement[] = [];
    for (let i = 0; i < 8; ++i) {
      if (view === "plane") {
        const x = (width / 8) * i;
        marks.push(svg("path", { d: `M${x} 0V${height}`, class: "graticule" }),
          svg("text", { x, y: height + 11, class: "middle" }, i === 0 ? `Hz 0 ${unit}` : label(i)));
        if (i > 0 && i < 4) {
          const y = (height / 4) * i;
          marks.push(svg("path", { d: `M0 ${y}H${width}`, class: "graticule" }),
            svg("text", { x: width - 4, y: y - 3, class: "end" }, `V ${label(i)}`));
        }
      } else {
        const angle = (i / 4) * Math.PI;
        const [sine, cosine] = [Math.sin(angle), Math.cos(angle)];
        const middle = width / 2;
        marks.push(svg("path", { d: `M${middle} ${middle}L${middle * (1 + sine)} ${middle * (1 - cosine)}`, class: "graticule" }),
          svg("text", { x: middle + (middle + 7) * sine, y: middle - (middle + 7) * cosine + 4, class: "middle" }, label(i)));
        if (i > 0 && i < 4) {
          marks.push(svg("circle", { cx: middle, cy: middle, r: (middle / 4) * i, class: "graticule" }));
        }
      }
    }
    return marks;
  }

  private drawMarks(): void {
    const faulty = new Set(this.report.faults.flatMap((fault) => fault.points));
    for (const view of ["plane", "zenith"] as const) {
      const marks: SVGElement[] = [];
      const all = answers(this.directions);
      for (let i = 2; i < all.length; i += DIRECTION) {
        const [x, y] = view === "plane" ? [all[i + 2]!, all[i + 3]!] : [all[i + 4]!, all[i + 5]!];
        marks.push(svg("circle", { cx: x, cy: y, r: 2, class: all[i + 6] ? "probe in" : "probe out" }));
      }
      const { points } = this.report;
      if (points.length <= MOST_CORNERS) {
        points.forEach((point, i) => {
          const [x, y] = point[view];
          if (x === null || y === null) return; // too large for a double
          const isFaulty = faulty.has(i + 1) ? " faulty" : "";
          marks.push(svg("circle", {
            cx: x, cy: y, r: i === this.chosen ? 6 : 4,
            class: `corner${isFaulty}${i === this.chosen ? " chosen" : ""}`, "data-point": i,
          }, svg("title", {}, `Point ${i + 1}: Hz ${point.hzText}, V ${point.vText}`)));
          if (points.length <= 60) {
            marks.push(svg("text", { x: x + 6, y: y - 6, class: "label" }, String(i + 1)));
          }
        });
      }
      if (this.explained) {
        const [x, y] = this.explained[view];
        marks.push(svg("path", {
          d: `M${x - 7} ${y}H${x + 7}M${x} ${y - 7}V${y + 7}`,
          class: `asked ${this.explained.inside ? "in" : "out"}`,
        }));
      }
      this.pictures[view].querySelector(".marks")?.replaceChildren(...marks);
    }
  }

  private isIn(view: View, [x, y]: Place): boolean {
    const [width, height] = SIZES[view];
    return view === "plane"
      ? x >= 0 && x <= width && y >= 0 && y <= height
      : Math.hypot(x - width / 2, y - height / 2) <= width / 2;
  }

  private at(view: View, [x, y]: Place): Promise<At> {
    return this.ask<At>("areaAt", view === "plane", x, y);
  }

  private async point(view: View, place: Place): Promise<void> {
    const order = ++this.pointerOrder;
    if (!this.isOpen || !this.isIn(view, place)) return;
    const at = await this.at(view, place).catch(() => null);
    if (!at || order !== this.pointerOrder) return;
    const { unit } = this.report;
    this.pointer.textContent = `Hz ${at.hzText} ${unit}, V ${at.vText} ${unit}: ${at.inside ? "inside" : "outside"}`;
  }

  private async press(view: View, placeOf: (event: PointerEvent) => Place, event: PointerEvent): Promise<void> {
    const corner = (event.target as Element).closest<SVGElement>("[data-point]");
    const place = placeOf(event);
    if (corner) {
      this.dragCorner(view, placeOf, event, Number(corner.dataset["point"]));
    } else if (this.isIn(view, place)) {
      const at = await this.at(view, place);
      if (this.isDrawing) await this.add(at.hz, at.v);
      else await this.explain(at.hz, at.v);
    }
  }

  private dragCorner(view: View, placeOf: (event: PointerEvent) => Place, start: PointerEvent, index: number): void {
    const picture = this.pictures[view];
    picture.setPointerCapture(start.pointerId);
    this.chosen = index;
    this.firstPoint = index - (index % MOST_ROWS);
    this.drawMarks();
    let last: Place | undefined;
    const move = (event: PointerEvent) => {
      const place = placeOf(event);
      if (!this.isIn(view, place)) return;
      last = place;
      const mark = picture.querySelector(`[data-point="${index}"]`);
      mark?.setAttribute("cx", String(place[0]));
      mark?.setAttribute("cy", String(place[1]));
    };
    const end = async () => {
      picture.removeEventListener("pointermove", move);
      picture.removeEventListener("pointerup", end);
      picture.removeEventListener("pointercancel", end);
      if (!last) return;
      const at = await this.at(view, last);
      await this.edit(MOVE, () => [index, at.hz, at.v]);
    };
    picture.addEventListener("pointermove", move);
    picture.addEventListener("pointerup", end);
    picture.addEventListener("pointercancel", end);
  }

  private setDrawing(isDrawing: boolean): void {
    this.isDrawing = isDrawing;
    this.drawButton.setAttribute("aria-pressed", String(isDrawing));
    this.root.classList.toggle("drawing", isDrawing);
  }

  private async explain(hz: number, v: number): Promise<void> {
    try {
      this.explained = await this.ask<Explanation>("explain", hz, v);
      this.hz.value = String(this.explained.hz);
      this.v.value = String(this.explained.v);
    } catch (error) {
      complain(error);
    }
    this.drawMarks();
    this.tellAnswer();
  }

  /** Does `work` after the previous edits. If it fails, the area stays unchanged. */
  private inOrder(work: () => Promise<void>): Promise<void> {
    this.edits = this.edits.then(work).catch((error: unknown) => {
      complain(error);
      this.drawMarks();
      this.tell();
      this.tellPoints();
      this.setControls();
    });
    return this.edits;
  }

  /** `values` gives the number of a point and two angles, from the area that the previous edits left. */
  private edit(edit: number, values: () => [number, number | null, number | null]): Promise<void> {
    return this.inOrder(async () => {
      const [index, hz, v] = values();
      if (!Number.isFinite(hz) || !Number.isFinite(v)) throw new Error("an angle is not a number");
      await this.change(await this.ask<string>("editArea", edit, index, hz, v));
    });
  }

  private add(hz: number, v: number): Promise<void> {
    return this.edit(INSERT, () => [this.report.points.length, hz, v]);
  }

  private change(text: string): Promise<void> {
    return this.set(text, () => {
      this.history.push(this.text);
      this.undone.length = 0;
    });
  }

  private undo(from = this.history, to = this.undone): Promise<void> {
    return this.inOrder(async () => {
      const text = from.at(-1);
      if (text === undefined) return;
      await this.set(text, () => {
        from.pop();
        to.push(this.text);
      });
    });
  }

  private convert(): Promise<void> {
    return this.inOrder(async () => {
      const { explained } = this;
      this.explained = null;
      await this.change(await this.ask<string>("convertArea", this.unit.value));
      if (explained) {
        const at = await this.at("plane", explained.plane);
        await this.explain(at.hz, at.v);
      }
    });
  }

  private setControls(): void {
    this.unit.value = this.report.unit;
    this.undoButton.disabled = this.history.length === 0;
    this.redoButton.disabled = this.undone.length === 0;
    this.drawButton.disabled = this.report.kind === "dome";
  }

  private save(): void {
    download(this.name.replace(/\.json$/i, "") + ".json", new Blob([this.text], { type: "application/json" }));
    this.savedText = this.text;
  }

  private tell(): void {
    const { report } = this;
    const kind = report.kind === "dome" ? "dome" : `${report.kind}, ${counted(report.points.length, "point")}`;
    const lines: [string, string][] = [["Name", report.name], ["Kind", kind], ["Valid", report.faults.length === 0 ? "yes" : "no"]];
    if (report.bounds) {
      const { hzMin, hzMax, vMin, vMax, enclosesZenith } = report.bounds;
      lines.push(["Bounds", `Hz ${hzMin} to ${hzMax} ${report.unit}, V ${vMin} to ${vMax} ${report.unit}`]);
      lines.push(["Zenith", enclosesZenith ? "enclosed" : "not enclosed"]);
    }
    const hzStep = element("input", { type: "number", step: "any", value: report.hzStep, "aria-label": "Hz step" });
    const vStep = element("input", { type: "number", step: "any", value: report.vStep, "aria-label": "V step" });
    hzStep.addEventListener("change", () => {
      const step = hzStep.valueAsNumber;
      void this.edit(STEPS, () => [0, step, this.report.vStep]);
    });
    vStep.addEventListener("change", () => {
      const step = vStep.valueAsNumber;
      void this.edit(STEPS, () => [0, this.report.hzStep, step]);
    });
    updateContent(this.facts,
      element("h3", {}, "Area"),
      element("dl", {}, ...lines.flatMap(([key, value]) => [element("dt", {}, key), element("dd", {}, value)]),
        element("dt", {}, `Steps [${report.unit}]`), element("dd", {}, "Hz ", hzStep, " V ", vStep)),
      report.faults.length > 0
        ? element("ul", { class: "alert" }, ...report.faults.map((fault) => element("li", {}, fault.text)))
        : "",
      element("details", { open: this.facts.querySelector("details")?.open ?? false }, element("summary", {}, "Outline"),
        this.pager("corner", report.outline.length, this.firstCorner, (first) => { this.firstCorner = first; this.tell(); }),
        element("table", {},
          element("thead", {}, element("tr", {}, ...["Corner", `Hz [${report.unit}]`, `V [${report.unit}]`, "Distance [m]"].map((title) => element("th", { scope: "col" }, title)))),
          element("tbody", {}, ...report.outline.slice(this.firstCorner, this.firstCorner + MOST_ROWS).map((point, i) =>
            element("tr", {}, ...[String(this.firstCorner + i + 1), point.hzText, point.vText, point.distance].map((cell) => element("td", {}, cell)))))))
    );
  }

  private tellPoints(): void {
    const { points, unit, kind } = this.report;
    if (kind === "dome") {
      this.pointTable.replaceChildren();
      return;
    }
    if (this.firstPoint >= points.length) this.firstPoint = 0;
    const rows = points.slice(this.firstPoint, this.firstPoint + MOST_ROWS).map((point, row) => {
      const i = this.firstPoint + row;
      const [hz, v] = (["hz", "v"] as const).map((key) => {
        const input = element("input", {
          type: "number", step: "any", value: point[key] ?? undefined, "aria-label": `${key === "hz" ? "Hz" : "V"} of point ${i + 1}`,
        });
        input.addEventListener("change", () => {
          const angle = input.valueAsNumber;
          void this.edit(MOVE, () => {
            const moved = { ...this.report.points[i]!, [key]: angle };
            return [i, moved.hz, moved.v];
          });
        });
        return input;
      });
      return element("tr", {},
        element("th", { scope: "row" }, String(i + 1)),
        element("td", {}, hz), element("td", {}, v),
        element("td", {}, point.distance === null ? "–" : String(point.distance)),
        element("td", {},
          button("Delete", () => void this.edit(REMOVE, () => [i, 0, 0]), { "aria-label": `Delete point ${i + 1}` }),
          button("Insert after", () => void this.insertAfter(i), { "aria-label": `Insert after point ${i + 1}` })));
    });
    updateContent(this.pointTable,
      element("h3", {}, "Points"),
      this.pager("point", points.length, this.firstPoint, (first) => { this.firstPoint = first; this.tellPoints(); }),
      element("div", { class: "wide", tabindex: 0, role: "region", "aria-label": "Table of points" },
        element("table", {},
        element("thead", {}, element("tr", {}, ...["Point", `Hz [${unit}]`, `V [${unit}]`, "Distance [m]", "Change"].map((title) => element("th", { scope: "col" }, title)))),
        element("tbody", {}, ...rows))));
  }

  /** Of a long table, which rows are shown, with an input for others. */
  private pager(what: string, count: number, first: number, show: (first: number) => void): HTMLElement | string {
    if (count <= MOST_ROWS) return "";
    const input = element("input", { type: "number", min: 1, max: count, value: first + 1, "aria-label": `First ${what} shown` });
    input.addEventListener("change", () => {
      const wanted = Math.floor(input.valueAsNumber) - 1;
      show(Math.min(Math.max(wanted || 0, 0), Number(input.max) - 1));
    });
    return element("p", {}, `From ${what} `, input, ` to ${Math.min(first + MOST_ROWS, count)} of ${count}`);
  }

  /** Inserts a point halfway to the next one in the plane, from where it can be moved. */
  private async insertAfter(index: number): Promise<void> {
    const { points } = this.report;
    const a = points[index]!;
    const b = points[(index + 1) % points.length]!;
    const at = await this.at("plane", [(a.plane[0]! + b.plane[0]!) / 2, (a.plane[1]! + b.plane[1]!) / 2]);
    await this.edit(INSERT, () => [index + 1, at.hz, at.v]);
  }

  private tellAnswer(): void {
    const why = this.explained;
    if (!why) {
      this.answer.replaceChildren(element("h3", {}, "Explanation"),
        element("p", {}, "Click into a view, or give a direction, to see why it is inside or outside."));
      return;
    }
    const { unit } = this.report;
    const lines: [string, string][] = [
      ["Direction", `Hz ${why.hzText} ${unit}, V ${why.vText} ${unit}`],
      ["Answer", why.inside ? "inside" : "outside"],
      ["Rule", why.rule],
    ];
    if (why.bandEdge !== null) lines.push(["Boundary band", `of edge ${why.bandEdge}`]);
    if (why.nearestEdge !== null) lines.push(["Distance to the boundary", `${why.distance} ${unit}, to edge ${why.nearestEdge}`]);
    this.answer.replaceChildren(
      element("h3", {}, "Explanation"),
      element("dl", {}, ...lines.flatMap(([key, value]) => [element("dt", {}, key), element("dd", {}, value)])),
      why.crossings.length === 0 ? "" : element("table", {},
        element("caption", {}, "Crossings of its meridian"),
        element("thead", {}, element("tr", {}, ...["Edge", `V [${unit}]`, "Counted"].map((title) => element("th", { scope: "col" }, title)))),
        element("tbody", {}, ...why.crossings.map((crossing) =>
          element("tr", {}, element("td", {}, String(crossing.edge)), element("td", {}, crossing.vText),
            element("td", {}, crossing.isCounted ? "yes" : "no"))))));
  }
}
