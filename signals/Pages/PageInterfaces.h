// The frameworks' JavaScript APIs for a page: a function called with the present state.
#pragma once

#include <string_view>

namespace quillon::signals {

// `now`: {cmpId, cmpVersion, supported: ["7:usnat"], tcf: {policy, vendorList, applies, string, segments}, gpp:
// {string, ids, sections: {usnat: [{...}]}}}. Missing members are unknown or not applicable.
inline constexpr std::string_view pageInterfaces = R"js((now => {
  const place = Symbol.for("quillon.signals")
  if (window[place]) return window[place](now)

  let latest = now
  let lastListener = 0
  // Exceptions of the page's callbacks must not reach this code.
  const call = (callback, ...values) => {
    try { callback(...values) } catch (error) { setTimeout(() => { throw error }) }
  }
  const setOf = ids => Object.fromEntries((ids || []).map(id => [id, true]))

  // TCF
  const tcfListeners = new Map()
  const tcData = (eventStatus, listenerId) => {
    const {policy, applies, string, segments} = latest.tcf
    const data = {tcfPolicyVersion: policy, cmpId: latest.cmpId, cmpVersion: latest.cmpVersion, gdprApplies: applies, listenerId}
    if (!applies) return data
    const core = segments ? segments.core : {}
    const publisher = segments && segments.publisherTC || {}
    const restrictions = {}
    for (const {PurposeId, RestrictionType, VendorIds} of core.PubRestrictions || []) {
      for (const vendor of VendorIds) (restrictions[PurposeId] = restrictions[PurposeId] || {})[vendor] = RestrictionType
    }
    return {
      ...data,
      tcString: string || "",
      eventStatus: string ? eventStatus : undefined,
      cmpStatus: "loaded",
      isServiceSpecific: true,
      useNonStandardTexts: !!core.UseNonStandardTexts,
      publisherCC: core.PublisherCC,
      purposeOneTreatment: !!core.PurposeOneTreatment,
      purpose: {consents: setOf(core.PurposesConsent), legitimateInterests: setOf(core.PurposesLITransparency)},
      vendor: {
        consents: setOf(core.VendorConsent),
        legitimateInterests: setOf(core.VendorLegitimateInterest),
        disclosedVendors: setOf(segments && segments.disclosedVendors && segments.disclosedVendors.DisclosedVendors),
      },
      specialFeatureOptins: setOf(core.SpecialFeatureOptIns),
      publisher: {
        consents: setOf(publisher.PubPurposesConsent),
        legitimateInterests: setOf(publisher.PubPurposesLITransparency),
        customPurpose: {
          consents: setOf(publisher.CustomPurposesConsent),
          legitimateInterests: setOf(publisher.CustomPurposesLITransparency),
        },
        restrictions,
      },
    }
  }
  // No events until it is known whether the GDPR applies.
  const isTcfKnown = () => latest.tcf && latest.tcf.applies !== undefined
  const tcf = {
    ping: callback => call(callback, {
      gdprApplies: latest.tcf && latest.tcf.applies, cmpLoaded: true, cmpStatus: "loaded", displayStatus: "hidden",
      apiVersion: "2.3", cmpVersion: latest.cmpVersion, cmpId: latest.cmpId,
      gvlVersion: latest.tcf && latest.tcf.vendorList, tcfPolicyVersion: latest.tcf && latest.tcf.policy,
    }, true),
    addEventListener: callback => {
      tcfListeners.set(++lastListener, callback)
      if (isTcfKnown()) call(callback, tcData("tcloaded", lastListener), true)
    },
    removeEventListener: (callback, listener) => call(callback, tcfListeners.delete(listener)),
  }

  // GPP
  const gppListeners = new Map()
  const toDate = (name, value) => name === "Created" || name === "LastUpdated" ? new Date(value * 1000) : value
  const parsed = segments => segments.map(segment =>
    Object.fromEntries(Object.entries(segment).map(([name, value]) => [name, toDate(name, value)])))
  const sections = () => latest.gpp ? latest.gpp.sections : {}
  const section = prefix => Object.hasOwn(sections(), prefix) ? parsed(sections()[prefix]) : null
  // Where the GDPR applies and the user has not been asked yet, the section is pending.
  const isAwaited = () => latest.tcf && latest.tcf.applies && !latest.tcf.string
  const gppPing = (signalStatus = latest.gpp && !isAwaited() ? "ready" : "not ready") => ({
    gppVersion: "1.1", cmpStatus: "loaded", cmpDisplayStatus: "hidden", signalStatus,
    supportedAPIs: latest.supported, cmpId: latest.cmpId,
    sectionList: latest.gpp ? latest.gpp.ids : [],
    applicableSections: isAwaited() ? [2] : !latest.gpp ? [] : latest.gpp.ids.length ? latest.gpp.ids : [-1],
    gppString: latest.gpp ? latest.gpp.string : "",
    parsedSections: Object.fromEntries(Object.keys(sections()).map(prefix => [prefix, section(prefix)])),
  })
  const gpp = {
    ping: callback => call(callback, gppPing(), true),
    addEventListener: callback => {
      gppListeners.set(++lastListener, callback)
      call(callback, {eventName: "listenerRegistered", listenerId: lastListener, data: true, pingData: gppPing()}, true)
    },
    removeEventListener: (callback, listener) => call(callback, gppListeners.delete(listener), true),
    hasSection: (callback, prefix) => call(callback, section(prefix) !== null, true),
    getSection: (callback, prefix) => call(callback, section(prefix), true),
    getField: (callback, path) => {
      const [prefix, name] = String(path).split(".")
      const holder = (section(prefix) || []).find(segment => Object.hasOwn(segment, name))
      call(callback, holder ? holder[name] : null, true)
    },
  }

  const perform = (commands, command, callback, parameter) => {
    if (typeof callback !== "function") return
    if (Object.hasOwn(commands, command)) commands[command](callback, parameter)
    else call(callback, null, false)
  }
  window.__tcfapi = (command, version, callback, parameter) =>
    perform(version === undefined || version === null || version === 0 || version === 2 ? tcf : {}, command, callback, parameter)
  window.__gpp = (command, callback, parameter) => perform(gpp, command, callback, parameter)

  // Frames detect the API by a frame of that name, and call it with messages.
  const answerFrames = (name, ask) => {
    const mark = () => {
      if (window.frames[name + "Locator"]) return
      if (!document.body) return void document.addEventListener("DOMContentLoaded", mark, {once: true})
      const frame = document.createElement("iframe")
      frame.style.display = "none"
      frame.name = name + "Locator"
      document.body.appendChild(frame)
    }
    mark()
    window.addEventListener("message", event => {
      const isText = typeof event.data === "string"
      let message = event.data
      try { if (isText) message = JSON.parse(message) } catch (error) { return }
      const request = message && message[name + "Call"]
      if (!request || !event.source) return
      ask(request, (returnValue, success) => {
        const reply = {[name + "Return"]: {returnValue, success, callId: request.callId}}
        event.source.postMessage(isText ? JSON.stringify(reply) : reply, "*")
      })
    })
  }
  // removeEventListener passes its success as the only argument.
  answerFrames("__tcfapi", (request, reply) => window.__tcfapi(request.command, request.version,
    (value, success) => success === undefined ? reply(value, value) : reply(value, success), request.parameter))
  answerFrames("__gpp", (request, reply) => window.__gpp(request.command, reply, request.parameter))

  const update = next => {
    const before = latest
    latest = next
    if (isTcfKnown() && JSON.stringify(before.tcf) !== JSON.stringify(next.tcf)) {
      for (const [id, callback] of [...tcfListeners]) call(callback, tcData("useractioncomplete", id), true)
    }
    if (JSON.stringify(before.gpp) === JSON.stringify(next.gpp)) return
    const tell = (eventName, data, pingData) => {
      for (const [listenerId, callback] of [...gppListeners]) call(callback, {eventName, listenerId, data, pingData}, true)
    }
    tell("signalStatus", "not ready", gppPing("not ready"))
    for (const prefix of new Set([...Object.keys(before.gpp ? before.gpp.sections : {}), ...Object.keys(sections())])) {
      tell("sectionChange", prefix, gppPing("not ready"))
    }
    const {signalStatus} = gppPing()
    if (signalStatus === "ready") tell("signalStatus", signalStatus, gppPing())
  }
  Object.defineProperty(window, place, {value: update})
}))js";

}  // namespace quillon::signals
