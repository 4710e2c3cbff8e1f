// An area: both views of it, its report, the explanation of a direction, and the editing of its
// points. The text of the file is the state: every edit makes a new text, and undo restores the old one.
import type { Client } from "./client";
import { button, counted, download, element, messageOf, say, svg } from "./dom";
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

interface At extends DirectionAt {
  inside: boolean;
}

export class AreaView {
  private static asked: AreaView | undefined;
  readonly root: HTMLElement;
  private readonly undone: string[] = [];
  private readonly history: string[] = [];
  private text: string;
  private savedText: string;
  private report!: AreaReport;
  private isDrawing = false;
  private chosen = -1;
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
  private readonly redoButton = button("Redo", () => void this.redo());
  private readonly drawButton = button("Draw corners", () => this.setDrawing(!this.isDrawing), { "aria-pressed": "false" });
  private readonly unit = element("select", { "aria-label": "Unit of angles" },
    ...["rad", "deg", "gon"].map((name) => element("option", { value: name }, name)));
  private readonly hz = element("input", { name: "hz", type: "number", step: "any", value: 0 });
  private readonly v = element("input", { name: "v", type: "number", step: "any", value: 0 });

  /** Throws if the text is not an area file; the message says where and why. */
  static async open(client: Client, name: string, text: string): Promise<AreaView> {
    AreaView.asked = undefined;
    const report = await client.ask<AreaReport>("openArea", text, name);
    return new AreaView(client, name, text, report);
  }

  private constructor(
    private readonly client: Client,
    private readonly name: string,
    text: string,
    report: AreaReport,
  ) {
    this.text = text;
    this.savedText = text;
    this.report = report;
    const views = (["plane", "zenith"] as const).map((view) => this.makeView(view));
    const csv = element("input", { type: "file", accept: ".csv,.txt", "aria-label": "Directions from CSV",
      change: () => { const [file] = csv.files ?? []; if (file) void this.addDirections(file); csv.value = ""; } });
    this.unit.addEventListener("change", () => void this.convert());
    this.root = element("div", { class: "area" },
      element("header", {}, element("h2", {}, name),
        element("div", { class: "bar" },
          this.drawButton, this.undoButton, this.redoButton,
          button("Save area file", () => this.save()),
          element("label", {}, "Unit ", this.unit),
          element("label", {}, "Directions from CSV ", csv))),
      this.pointer,
      element("div", { class: "pictures" }, ...views),
      element("form", { class: "bar ask", submit: (event: Event) => { event.preventDefault(); void this.explain(this.hz.valueAsNumber, this.v.valueAsNumber); } },
        element("label", {}, "Hz ", this.hz),
        element("label", {}, "V ", this.v),
        element("button", { type: "submit" }, "Explain this direction"),
        button("Add as last point", () => void this.edit(INSERT, this.report.points.length, this.hz.valueAsNumber, this.v.valueAsNumber))),
      this.answer, this.facts, this.pointTable);
  }

  get hasUnsaved(): boolean {
    return this.text !== this.savedText;
  }

  load(): Promise<void> {
    return this.refresh();
  }

  async restart(): Promise<void> {
    await this.refresh();
  }

  close(): void {
    this.pointerOrder++;
  }

  /** Shows the directions of a CSV file as points. */
  async addDirections(file: File): Promise<void> {
    try {
      this.directionFile = new Uint8Array(await file.arrayBuffer());
      await this.answerDirections();
      const [count = 0, inside = 0] = this.directions ?? [];
      say(`${file.name}: ${counted(count, "direction")}, ${inside} inside, ${count - inside} outside.`);
    } catch (error) {
      this.directionFile = null;
      say(`${file.name}: ${messageOf(error)}`, true);
    }
    this.drawMarks();
  }

  private async answerDirections(): Promise<void> {
    this.directions = this.directionFile
      ? await this.ask<Float64Array>("directions", this.directionFile)
      : null;
  }

  /** The module holds one area at a time. Opens the area of this view in it before each query. */
  private ask<Result>(operation: string, ...values: unknown[]): Promise<Result> {
    if (AreaView.asked !== this) {
      AreaView.asked = this;
      void this.client.ask("openArea", this.text, this.name);
    }
    return this.client.ask<Result>(operation, ...values);
  }

  private async refresh(): Promise<void> {
    AreaView.asked = this;
    this.report = await this.client.ask<AreaReport>("openArea", this.text, this.name);
    const picture = await this.ask<AreaPicture>("areaPicture");
    await this.answerDirections().catch(() => undefined);
    if (this.explained) {
      this.explained = await this.ask<Explanation>("explain", this.explained.hz, this.explained.v);
    }
    this.unit.value = this.report.unit;
    this.undoButton.disabled = this.history.length === 0;
    this.redoButton.disabled = this.undone.length === 0;
    this.drawButton.disabled = this.report.kind === "dome";
    for (const view of ["plane", "zenith"] as const) this.drawPaths(view, picture);
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
      const answers = this.directions ?? new Float64Array();
      for (let i = 2; i < answers.length; i += 7) {
        const [x, y] = view === "plane" ? [answers[i + 2]!, answers[i + 3]!] : [answers[i + 4]!, answers[i + 5]!];
        marks.push(svg("circle", { cx: x, cy: y, r: 2, class: answers[i + 6] ? "probe in" : "probe out" }));
      }
      const { points } = this.report;
      if (points.length <= MOST_CORNERS) {
        points.forEach((point, i) => {
          const [x, y] = point[view];
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
    if (!this.isIn(view, place)) return;
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
      if (this.isDrawing) await this.edit(INSERT, this.report.points.length, at.hz, at.v);
      else await this.explain(at.hz, at.v);
    }
  }

  private dragCorner(view: View, placeOf: (event: PointerEvent) => Place, start: PointerEvent, index: number): void {
    const picture = this.pictures[view];
    picture.setPointerCapture(start.pointerId);
    this.chosen = index;
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
      await this.edit(MOVE, index, at.hz, at.v);
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
      say(messageOf(error), true);
    }
    this.drawMarks();
    this.tellAnswer();
  }

  private async edit(edit: number, index: number, hz: number, v: number): Promise<void> {
    try {
      if (!Number.isFinite(hz) || !Number.isFinite(v)) throw new Error("an angle is no number");
      const text = await this.ask<string>("editArea", edit, index, hz, v);
      await this.change(text);
    } catch (error) {
      say(messageOf(error), true);
      await this.refresh().catch(() => undefined);
    }
  }

  private async change(text: string): Promise<void> {
    this.history.push(this.text);
    this.undone.length = 0;
    this.text = text;
    this.chosen = Math.min(this.chosen, this.report.points.length - 1);
    await this.refresh();
  }

  private async undo(): Promise<void> {
    const text = this.history.pop();
    if (text === undefined) return;
    this.undone.push(this.text);
    this.text = text;
    await this.refresh();
  }

  private async redo(): Promise<void> {
    const text = this.undone.pop();
    if (text === undefined) return;
    this.history.push(this.text);
    this.text = text;
    await this.refresh();
  }

  private async convert(): Promise<void> {
    const { explained } = this;
    this.explained = null;
    await this.change(await this.ask<string>("convertArea", this.unit.value));
    if (explained) {
      const at = await this.at("plane", explained.plane);
      await this.explain(at.hz, at.v);
    }
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
    for (const input of [hzStep, vStep]) {
      input.addEventListener("change", () => void this.edit(STEPS, 0, hzStep.valueAsNumber, vStep.valueAsNumber));
    }
    this.facts.replaceChildren(
      element("h3", {}, "Area"),
      element("dl", {}, ...lines.flatMap(([key, value]) => [element("dt", {}, key), element("dd", {}, value)]),
        element("dt", {}, `Steps [${report.unit}]`), element("dd", {}, "Hz ", hzStep, " V ", vStep)),
      report.faults.length > 0
        ? element("ul", { class: "alert" }, ...report.faults.map((fault) => element("li", {}, fault.text)))
        : "",
      element("details", {}, element("summary", {}, "Outline"),
        element("table", {},
          element("thead", {}, element("tr", {}, ...["Corner", `Hz [${report.unit}]`, `V [${report.unit}]`, "Distance [m]"].map((title) => element("th", { scope: "col" }, title)))),
          element("tbody", {}, ...report.outline.slice(0, MOST_CORNERS).map((point, i) =>
            element("tr", {}, ...[String(i + 1), point.hzText, point.vText, point.distance].map((cell) => element("td", {}, cell)))))))
    );
  }

  private tellPoints(): void {
    const { points, unit, kind } = this.report;
    if (kind === "dome" || points.length > MOST_CORNERS) {
      this.pointTable.replaceChildren();
      return;
    }
    const rows = points.map((point, i) => {
      const inputs = (["hz", "v"] as const).map((key) =>
        element("input", {
          type: "number", step: "any", value: point[key], "aria-label": `${key === "hz" ? "Hz" : "V"} of point ${i + 1}`,
        }));
      const [hz, v] = inputs as [HTMLInputElement, HTMLInputElement];
      for (const input of inputs) {
        input.addEventListener("change", () => void this.edit(MOVE, i, hz.valueAsNumber, v.valueAsNumber));
      }
      return element("tr", {},
        element("th", { scope: "row" }, String(i + 1)),
        element("td", {}, hz), element("td", {}, v),
        element("td", {}, point.distance === null ? "–" : String(point.distance)),
        element("td", {},
          button("Delete", () => void this.edit(REMOVE, i, 0, 0), { "aria-label": `Delete point ${i + 1}` }),
          button("Insert after", () => void this.insertAfter(i), { "aria-label": `Insert after point ${i + 1}` })));
    });
    this.pointTable.replaceChildren(
      element("h3", {}, "Points"),
      element("div", { class: "wide", tabindex: 0, role: "region", "aria-label": "Table of points" },
        element("table", {},
        element("thead", {}, element("tr", {}, ...["Point", `Hz [${unit}]`, `V [${unit}]`, "Distance [m]", "Change"].map((title) => element("th", { scope: "col" }, title)))),
        element("tbody", {}, ...rows))));
  }

  /** Inserts a point halfway to the next one in the plane, from where it can be moved. */
  private async insertAfter(index: number): Promise<void> {
    const { points } = this.report;
    const a = points[index]!;
    const b = points[(index + 1) % points.length]!;
    const at = await this.at("plane", [(a.plane[0] + b.plane[0]) / 2, (a.plane[1] + b.plane[1]) / 2]);
    await this.edit(INSERT, index + 1, at.hz, at.v);
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
